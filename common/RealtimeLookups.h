#pragma once
// Lookups in the real-time database, on the thread attached to it. Each gives a neutral
// value when it finds nothing: 0 for a bus number, 0.0 for a voltage or angle, "" for a
// name, 1.0 (with a message) for a base voltage. Like every read, a lookup takes the
// database lock shared; it is held until the thread commits or precommits.

// The `ibs` of node `id`; 0 for an empty name or an unknown node.
int GetNodeBsNo_FromRTDB(const char* id);
// Voltage magnitude and angle of the calculation bus of node `id`.
double GetNodeVol_FromRTDB(const char* id);
double GetNodeAngle_FromRTDB(const char* id);
// The name of the calculation bus of node `id`. The text is the database's own, good
// while that record stands.
const char* GetBsName_FromRTDB(const char* id);
// The id of the physical bus whose `ibs` is `ibs`; the same lifetime.
const char* GetBusName_FromRTDB(int ibs);
// The base voltage of a voltage level (bBus true) or of a node's voltage level.
double GetBasekV_FromRTDB(const char* name, bool bBus);
