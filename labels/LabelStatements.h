#pragma once
// Statement templates of the label refresh (PrepareRTLabelLFRData): the label map's rows
// of one configuration, all of them or only the changed ones, and the reset of the change
// marks. The reset has no WHERE: it clears the marks of every configuration.

namespace labels {

constexpr const char* LABEL_MAP_TABLE = "RTLABELMAP";
// The configuration whose labels the load-flow refresh fills.
constexpr int LABEL_CONF_LOADFLOW = 4;

constexpr const char* SQL_LABEL_ROWS_CHANGED =
    "SELECT Ele_OrderNo,Label_OrderNo,RT_No,Label_Type FROM %s WHERE LabelsConf_Num=%d AND "
    "MChanged = 1 ";
constexpr const char* SQL_LABEL_ROWS =
    "SELECT Ele_OrderNo,Label_OrderNo,RT_No,Label_Type FROM %s WHERE LabelsConf_Num=%d ";
constexpr const char* SQL_LABEL_CLEAR_CHANGED = "UPDATE %s SET MChanged = 0";

} // namespace labels
