#include "dialogs/WinDlgCalBranchChoose.h"

#include "common/Feedback.h"
#include "common/ModalBox.h"
#include "dialogs/DialogStatements.h"
#include "dialogs/DialogKit.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMap>
#include <QSqlQuery>
#include <QToolButton>
#include <QVariant>
#include <cstring>

using namespace dlgsql::branch;

namespace {

// How a source table holds its branches.
enum class Shape {
    TwoEnded,     // I_Name, J_Name, ID_No
    ThreeWinding, // three branches from the neutral Name_N to each winding
    Shunt,        // the bus on both sides
};

struct Source
{
    const char* table;
    Shape shape;
    int eleType;
};

// Base tables, read under their plain and their working-copy name (modes 1 and 2).
const Source BASE_SOURCES[] = {
    {"CDB_ACLINE", Shape::TwoEnded, 6},       {"CDB_DCLINE", Shape::TwoEnded, 7},
    {"CDB_TRANS_2W", Shape::TwoEnded, 10},    {"CDB_SHIFT", Shape::TwoEnded, 11},
    {"CDB_SCAPREA", Shape::TwoEnded, 8},      {"CDB_BREAKER", Shape::TwoEnded, 13},
    {"CDB_ISOSWITCH", Shape::TwoEnded, 14},   {"CDB_TRANS_3W", Shape::ThreeWinding, 12},
    {"CDB_PCAPREA", Shape::Shunt, 4},
};
// Load-flow result tables (modes 1 and 2), read for one case.
const Source LF_RESULT_SOURCES[] = {
    {"LFR_ACLINE_R", Shape::TwoEnded, 6},  {"LFR_DCLINE_R", Shape::TwoEnded, 7},
    {"LFR_T2W_R", Shape::TwoEnded, 10},    {"LFR_SHIFT_R", Shape::TwoEnded, 11},
    {"LFR_SCR_R", Shape::TwoEnded, 8},     {"LFR_BREAKER_R", Shape::TwoEnded, 13},
    {"LFR_PCR_R", Shape::Shunt, 4},        {"LFR_T3W_R", Shape::ThreeWinding, 12},
};
// Optimal-flow result tables (mode 4); there is no breaker table among them.
const Source OPF_RESULT_SOURCES[] = {
    {"OPFR_ACLINE_R", Shape::TwoEnded, 6}, {"OPFR_DCLINE_R", Shape::TwoEnded, 7},
    {"OPFR_T2W_R", Shape::TwoEnded, 10},   {"OPFR_SHIFT_R", Shape::TwoEnded, 11},
    {"OPFR_SCR_R", Shape::TwoEnded, 8},    {"OPFR_PCR_R", Shape::Shunt, 4},
    {"OPFR_T3W_R", Shape::ThreeWinding, 12},
};

// Job tables (mode 3): the family is chosen by the table name's first two characters.
// codes[n - 1] is the element type code that NType n stands for (0: none).
struct JobFamily
{
    const char* prefix;
    const char* select;
    int codes[3];
    int (*typeOfRow)(int nType);
};

int lineType(int n)
{
    return n == 1 ? 6 : n == 2 ? 8 : 4;
}
int transformerType(int n)
{
    return n == 1 ? 10 : n == 2 ? 11 : 12;
}
int switchType(int n)
{
    return n == 1 ? 13 : n == 2 ? 14 : n;
}

const JobFamily JOB_FAMILIES[] = {
    {"L2", SQL_JOB_L2, {6, 8, 4}, lineType},
    {"L3", SQL_JOB_L3, {10, 11, 12}, transformerType},
    {"LK", SQL_JOB_LK, {13, 14, 0}, switchType},
};

bool run(QSqlQuery& q, const QByteArray& sql)
{
    return ExecStatement(q, sql);
}

QByteArray local(const QVariant& v)
{
    return v.toString().toLocal8Bit();
}

// Copies a text into a name buffer: at most 20 bytes as the design counted them.
void copyName(char (&target)[GbkBufferSize(kNameBytes)], const QByteArray& text)
{
    GbkCopy(target, text, kNameBytes);
}

QString fromLocal(const char* text)
{
    return text ? QString::fromLocal8Bit(text) : QString();
}

} // namespace

WinDlgCalBranchChoose::WinDlgCalBranchChoose(int nMode, QSqlDatabase* pDB, QList<QString> tables,
                                             QWidget* parent, const char* name, bool modal,
                                             Qt::WindowFlags fl)
    : QDialog(parent, fl), m_pTables(new QList<QString>(tables)), m_nMode(nMode), m_pDB(pDB)
{
    setObjectName(QString::fromLatin1(name ? name : "WinDlgCalBranchChoose"));
    setModal(modal);
    InitDlg();
}

WinDlgCalBranchChoose::WinDlgCalBranchChoose(int nMode, QSqlDatabase* pDB, QList<QString> tables,
                                             QList<int> eleTypes, QWidget* parent,
                                             const char* name, bool modal, Qt::WindowFlags fl)
    : QDialog(parent, fl), m_pTables(new QList<QString>(tables)), m_nMode(nMode), m_pDB(pDB)
{
    setObjectName(QString::fromLatin1(name ? name : "WinDlgCalBranchChoose"));
    setModal(modal);
    // A copy of its own, made here: the list is never freed (see the member).
    m_pEleTypes = new QList<int>();
    m_pEleTypes->reserve(eleTypes.size());
    for (int code : eleTypes) {
        m_pEleTypes->append(code);
    }
    InitDlg();
}

WinDlgCalBranchChoose::~WinDlgCalBranchChoose()
{
    if (m_pDB) {
        QSqlQuery q(*m_pDB);
        run(q, FormatText(SQL_DROP, TEMP_TABLE));
    }
    delete m_pTables;
}

void WinDlgCalBranchChoose::InitDlg()
{
    setFixedSize(342, 330);
    setWindowTitle(QString::fromUtf8(CAPTION));

    TextLabel_BranchName = Place(new QLabel(QStringLiteral("支路名称"), this),
                                 "TextLabel_BranchName", 20, 10, 66, 21);
    ComboBox_BranchName = Place(new QComboBox(this), "ComboBox_BranchName", 110, 10, 110, 21);
    MakePlainEditableCombo(ComboBox_BranchName);
    TextLabel_Branch =
        Place(new QLabel(QStringLiteral("一侧节点名"), this), "TextLabel_Branch", 40, 40, 80, 20);
    LineEdit_BusName1 = Place(new QLineEdit(this), "LineEdit_BusName1", 10, 62, 150, 20);
    LineEdit_BusName1->setToolTip(QStringLiteral("支路I侧节点名"));
    ListBox_Branch = Place(new QListWidget(this), "ListBox_Branch", 10, 90, 150, 181);
    TextLabel_AnotherBranch = Place(new QLabel(QStringLiteral("另一侧节点名"), this),
                                    "TextLabel_AnotherBranch", 220, 40, 80, 20);
    LineEdit_BusName2 = Place(new QLineEdit(this), "LineEdit_BusName2", 180, 60, 150, 20);
    LineEdit_BusName2->setToolTip(QStringLiteral("支路J侧节点名"));
    ListBox_AnotherBranch =
        Place(new QListWidget(this), "ListBox_AnotherBranch", 180, 90, 150, 181);
    ToolButton_OK = Place(new QToolButton(this), "ToolButton_OK", 150, 300, 70, 21);
    ToolButton_OK->setText(QStringLiteral("确定"));
    ToolButton_OK->setToolTip(QStringLiteral("确定"));
    ToolButton_Cancel = Place(new QToolButton(this), "ToolButton_Cancel", 240, 300, 70, 21);
    ToolButton_Cancel->setText(QStringLiteral("取消"));
    ToolButton_Cancel->setToolTip(QStringLiteral("取消"));

    // Typing starts at the branch name; Tab walks the fields left to right.
    setTabOrder(ComboBox_BranchName, LineEdit_BusName1);
    setTabOrder(LineEdit_BusName1, ListBox_Branch);
    setTabOrder(ListBox_Branch, LineEdit_BusName2);
    setTabOrder(LineEdit_BusName2, ListBox_AnotherBranch);
    setTabOrder(ListBox_AnotherBranch, ToolButton_OK);
    setTabOrder(ToolButton_OK, ToolButton_Cancel);
    ComboBox_BranchName->setFocus();

    connect(ToolButton_OK, &QToolButton::clicked, this,
            &WinDlgCalBranchChoose::ToolButton_OK_clicked);
    connect(ToolButton_Cancel, &QToolButton::clicked, this,
            &WinDlgCalBranchChoose::ToolButton_Cancel_clicked);
    connect(ListBox_Branch, &QListWidget::itemClicked, this,
            &WinDlgCalBranchChoose::ListBox_Branch_clicked);
    connect(ListBox_AnotherBranch, &QListWidget::itemClicked, this,
            &WinDlgCalBranchChoose::ListBox_AnotherBranch_clicked);
    connect(ComboBox_BranchName->lineEdit(), &QLineEdit::returnPressed, this,
            &WinDlgCalBranchChoose::OnUserInputName);
    connect(LineEdit_BusName1, &QLineEdit::textChanged, this,
            &WinDlgCalBranchChoose::LineEdit_BusName1_textChanged);
    connect(LineEdit_BusName2, &QLineEdit::textChanged, this,
            &WinDlgCalBranchChoose::LineEdit_BusName2_textChanged);
    connect(LineEdit_BusName1, &QLineEdit::returnPressed, this,
            &WinDlgCalBranchChoose::LineEdit_BusName1_returnPressed);
    connect(LineEdit_BusName2, &QLineEdit::returnPressed, this,
            &WinDlgCalBranchChoose::LineEdit_BusName2_returnPressed);
    connect(ComboBox_BranchName, qOverload<int>(&QComboBox::activated), this,
            &WinDlgCalBranchChoose::ComboBox_BranchName_activated);
}

// ---- Filling BRANCHTEMP ----

void WinDlgCalBranchChoose::ReadAllBranches()
{
    if (!m_pDB) {
        m_bRead = true;
        return;
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_CREATE, TEMP_TABLE)) || !run(q, FormatText(SQL_EMPTY, TEMP_TABLE))) {
        return;
    }
    // A failed statement ends the read with m_bRead false; the next use starts again
    // with the delete.
    for (const QString& table : *m_pTables) {
        if (!ReadTable(table)) {
            return;
        }
    }
    m_bRead = true;
}

bool WinDlgCalBranchChoose::ReadTable(const QString& table)
{
    switch (m_nMode) {
    case 1:
    case 2:
    case 4:
        return ReadSourceTable(table);
    case 3:
        return ReadJobTable(table);
    default:
        return true; // other modes read nothing
    }
}

namespace {
// The statements that read one source table: one, or three for a three-winding table.
QList<QByteArray> selectsOf(const Source& s, const QByteArray& table, bool withCase, int caseNo)
{
    static const char* const baseWindings[] = {SQL_BASE_T3W_1, SQL_BASE_T3W_2, SQL_BASE_T3W_3};
    static const char* const resultWindings[] = {SQL_RESULT_T3W_1, SQL_RESULT_T3W_2,
                                                 SQL_RESULT_T3W_3};
    QList<const char*> formats;
    switch (s.shape) {
    case Shape::TwoEnded:
        formats << (withCase ? SQL_RESULT_BRANCHES : SQL_BASE_BRANCHES);
        break;
    case Shape::Shunt:
        formats << (withCase ? SQL_RESULT_SHUNTS : SQL_BASE_SHUNTS);
        break;
    case Shape::ThreeWinding:
        for (const char* f : withCase ? resultWindings : baseWindings) {
            formats << f;
        }
        break;
    }
    QList<QByteArray> selects;
    for (const char* f : formats) {
        selects << (withCase ? FormatText(f, table.constData(), caseNo)
                             : FormatText(f, table.constData()));
    }
    return selects;
}
} // namespace

bool WinDlgCalBranchChoose::ReadSourceTable(const QString& table)
{
    const QByteArray name = table.toLocal8Bit();
    const Source* found = nullptr;
    bool withCase = true;
    if (m_nMode == 4) {
        for (const Source& s : OPF_RESULT_SOURCES) {
            found = table == QLatin1String(s.table) ? &s : found;
        }
    } else {
        // Modes 1 and 2 read alike: base tables under either name, load-flow results.
        for (const Source& s : BASE_SOURCES) {
            if (table == QLatin1String(s.table) ||
                table == QLatin1String(s.table) + QLatin1String(dlgsql::WORKING_COPY)) {
                found = &s;
                withCase = false;
            }
        }
        for (const Source& s : LF_RESULT_SOURCES) {
            found = table == QLatin1String(s.table) ? &s : found;
        }
    }
    if (!found) {
        return true; // an unknown table is skipped
    }
    // Each query or pass is copied, and flushed, by itself.
    for (const QByteArray& select : selectsOf(*found, name, withCase, m_nCase_No)) {
        if (!CopyRows(select, found->eleType)) {
            return false;
        }
    }
    return true;
}

bool WinDlgCalBranchChoose::ReadJobTable(const QString& table)
{
    const QString prefix = table.left(2).toUpper();
    for (const JobFamily& f : JOB_FAMILIES) {
        if (prefix != QLatin1String(f.prefix)) {
            continue;
        }
        QByteArray select = FormatText(f.select, table.toLocal8Bit().constData());
        if (m_pEleTypes && !m_pEleTypes->isEmpty()) {
            bool first = true;
            for (int code : *m_pEleTypes) {
                for (int n = 1; n <= 3; ++n) {
                    if (f.codes[n - 1] != 0 && f.codes[n - 1] == code) {
                        select += FormatText(first ? SQL_FILTER_FIRST : SQL_FILTER_MORE, n);
                        first = false;
                    }
                }
            }
            // Appended in every case: a filter without a code of this family leaves a
            // lone ")" that the server refuses, which ends the whole read. A filter is
            // expected to name every family whose tables are passed.
            select += SQL_FILTER_END;
        }
        return CopyRows(select, -1, f.typeOfRow);
    }
    return true;
}

bool WinDlgCalBranchChoose::CopyRows(const QByteArray& select, int eleType, int (*typeOfRow)(int))
{
    QSqlQuery rows(*m_pDB);
    rows.setForwardOnly(true);
    if (!run(rows, select)) {
        return false;
    }
    QSqlQuery insert(*m_pDB);
    QByteArray statement;
    int counter = 0;
    while (rows.next()) {
        const int type = typeOfRow ? typeOfRow(rows.value(4).toInt()) : eleType;
        // Values go in as read; a quote or backslash in one is escaped so that it cannot
        // end its literal.
        const QByteArray id = SqlText(m_pDB, local(rows.value(0))),
                         i = SqlText(m_pDB, local(rows.value(1))),
                         j = SqlText(m_pDB, local(rows.value(2)));
        if (counter == 0) {
            statement = FormatText(SQL_INSERT_FIRST, TEMP_TABLE, id.constData(), i.constData(),
                                   j.constData(), rows.value(3).toInt(), type);
        } else {
            statement += FormatText(SQL_INSERT_MORE, id.constData(), i.constData(),
                                    j.constData(), rows.value(3).toInt(), type);
        }
        if (++counter == INSERT_BATCH) {
            if (!run(insert, statement)) {
                return false;
            }
            counter = 0;
        }
    }
    return counter == 0 || run(insert, statement);
}

// ---- Filling the lists ----

void WinDlgCalBranchChoose::AddAllI_Names()
{
    ListBox_Branch->clear();
    if (m_pDB) {
        QSqlQuery q(*m_pDB);
        // The I sides, then the nodes that occur only as a J side: every node once.
        for (const QByteArray& sql : {FormatText(SQL_I_NAMES, TEMP_TABLE),
                                      FormatText(SQL_J_ONLY_NAMES, TEMP_TABLE, TEMP_TABLE)}) {
            if (!run(q, sql)) {
                return;
            }
            while (q.next()) {
                const QString node = q.value(0).toString();
                if (!node.isEmpty()) {
                    ListBox_Branch->addItem(node);
                }
            }
        }
    }
    SortItems(ListBox_Branch);
}

void WinDlgCalBranchChoose::AddJ_Names(const QString& name)
{
    ListBox_AnotherBranch->clear();
    if (!m_pDB) {
        return;
    }
    const QByteArray node = SqlText(m_pDB, name.toLocal8Bit());
    QSqlQuery q(*m_pDB);
    QMap<QString, int> seen;
    // The other ends in either orientation: where the node is the I side, then where it
    // is the J side, each name once.
    for (const char* sql : {SQL_J_OF_I, SQL_I_OF_J}) {
        if (!run(q, FormatText(sql, TEMP_TABLE, node.constData()))) {
            return;
        }
        while (q.next()) {
            const QString other = q.value(0).toString().trimmed();
            if (other.isEmpty() || seen.contains(other)) {
                continue;
            }
            seen.insert(other, seen.size());
            ListBox_AnotherBranch->addItem(other);
        }
    }
}

void WinDlgCalBranchChoose::AddID_Names()
{
    ComboBox_BranchName->clear();
    if (m_pDB) {
        QSqlQuery q(*m_pDB);
        if (!run(q, FormatText(SQL_ID_NAMES, TEMP_TABLE))) {
            return;
        }
        while (q.next()) {
            AddOneNameToComboBox(q.value(0).toString());
        }
        AddOneNameToComboBox(QString());
    }
    ComboBox_BranchName->setEditText(QString());
    SortItems(ComboBox_BranchName);
}

void WinDlgCalBranchChoose::AddOneNameToComboBox(const QString& name)
{
    // The prefix look-up never hits on the empty name, so the list gets one empty entry.
    if (FindComboItemBeginsWith(ComboBox_BranchName, name) < 0) {
        ComboBox_BranchName->addItem(name);
    }
}

void WinDlgCalBranchChoose::SetCurrentID_Name(const QString& i, const QString& j)
{
    if (!m_pDB) {
        return;
    }
    const QByteArray bi = SqlText(m_pDB, i.toLocal8Bit()), bj = SqlText(m_pDB, j.toLocal8Bit());
    QSqlQuery q(*m_pDB);
    if (run(q, FormatText(SQL_ID_OF_ENDS, TEMP_TABLE, bi.constData(), bj.constData(),
                          bj.constData(), bi.constData())) &&
        q.next()) {
        SetCurrentBranchName(q.value(0).toString());
    }
}

void WinDlgCalBranchChoose::SetCurrentBranchName(const QString& name)
{
    const int index = FindComboItemBeginsWith(ComboBox_BranchName, name);
    if (index >= 0) {
        ComboBox_BranchName->setCurrentIndex(index);
    }
}

void WinDlgCalBranchChoose::SetI_Name(const QString& name)
{
    const QString node = name.simplified();
    if (QListWidgetItem* hit = FindItemBeginsWith(ListBox_Branch, node)) {
        ListBox_Branch->setCurrentItem(hit);
    }
    LineEdit_BusName1->setText(node);
}

void WinDlgCalBranchChoose::SetJ_Name(const QString& name)
{
    const QString node = name.simplified();
    if (QListWidgetItem* hit = FindItemBeginsWith(ListBox_AnotherBranch, node)) {
        ListBox_AnotherBranch->setCurrentItem(hit);
    }
    LineEdit_BusName2->setText(node);
}

void WinDlgCalBranchChoose::SetCurrentIDNo(const QString& name)
{
    if (!m_pDB) {
        return;
    }
    QSqlQuery q(*m_pDB);
    if (!run(q,
             FormatText(SQL_ID_NO, TEMP_TABLE, SqlText(m_pDB, name.toLocal8Bit()).constData()))) {
        return;
    }
    while (q.next()) {
        SetCurrentBranchName(q.value(0).toString());
    }
}

// ---- Running the dialog ----

int WinDlgCalBranchChoose::ChooseBranch(char*, char* i, char* j)
{
    if (!m_bRead) {
        ReadAllBranches();
        AddAllI_Names();
    }
    const QString iName = fromLocal(i), jName = fromLocal(j);
    AddID_Names();
    AddJ_Names(iName);
    SetI_Name(iName);
    SetJ_Name(jName);
    SetCurrentID_Name(iName, jName);
    return exec() == QDialog::Accepted ? 0 : 1;
}

int WinDlgCalBranchChoose::ChooseBranch(int, char* i, char* j)
{
    return ChooseBranch(static_cast<char*>(nullptr), i, j);
}

int WinDlgCalBranchChoose::GetFirstBranch(char* name, char* i, char* j)
{
    if (!m_bRead) {
        ReadAllBranches();
        AddAllI_Names();
    }
    if (!m_pDB) {
        return 0;
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_FIRST_BRANCH, TEMP_TABLE, SqlText(m_pDB, name).constData()))) {
        return 1;
    }
    if (!q.next()) {
        return 2;
    }
    const QByteArray iName = GbkCut(local(q.value(0)), kNameBytes),
                     jName = GbkCut(local(q.value(1)), kNameBytes);
    std::memcpy(i, iName.constData(), size_t(iName.size()) + 1);
    std::memcpy(j, jName.constData(), size_t(jName.size()) + 1);
    copyName(m_Branch.ID_Name, QByteArray(name ? name : ""));
    copyName(m_Branch.I_Name, iName);
    copyName(m_Branch.J_Name, jName);
    m_Branch.ID_No = q.value(2).toInt();
    m_Branch.iEleType = q.value(3).toInt();
    return 0;
}

// ---- Slots ----

void WinDlgCalBranchChoose::LookUpTypedName(bool selectBranchName)
{
    char name[GbkBufferSize(kNameBytes)];
    copyName(name, ComboBox_BranchName->currentText().toLocal8Bit());
    char i[GbkBufferSize(kNameBytes)] = {}, j[GbkBufferSize(kNameBytes)] = {};
    if (GetFirstBranch(name, i, j) == 0) {
        const QString iName = QString::fromLocal8Bit(i), jName = QString::fromLocal8Bit(j);
        SetI_Name(iName);
        AddJ_Names(iName);
        SetJ_Name(jName);
        if (selectBranchName) {
            // The branch named stays chosen: the first branch between its ends, which the
            // look-up by ends would pick, may be a parallel one.
            const QString typed = QString::fromLocal8Bit(name);
            const int index = ComboBox_BranchName->findText(
                typed, Qt::MatchFixedString | Qt::MatchCaseSensitive);
            if (index >= 0) {
                ComboBox_BranchName->setCurrentIndex(index);
            } else {
                ComboBox_BranchName->setEditText(typed);
            }
        }
    } else if (selectBranchName) {
        ComboBox_BranchName->setEditText(QString());
        ListBox_AnotherBranch->clear();
        LineEdit_BusName1->clear();
        LineEdit_BusName2->clear();
    }
}

void WinDlgCalBranchChoose::ComboBox_BranchName_activated(int)
{
    if (!ComboBox_BranchName->currentText().isEmpty()) {
        LookUpTypedName(false);
    }
}

void WinDlgCalBranchChoose::OnUserInputName()
{
    LookUpTypedName(true);
}

void WinDlgCalBranchChoose::ListBox_Branch_clicked(QListWidgetItem*)
{
    QListWidgetItem* current = ListBox_Branch->currentItem();
    if (!current) {
        return;
    }
    const QString node = current->text();
    AddJ_Names(node);
    if (ListBox_AnotherBranch->count() > 0) {
        LineEdit_BusName1->setText(node);
        ListBox_AnotherBranch->setCurrentRow(0);
        SetCurrentID_Name(node, ListBox_AnotherBranch->currentItem()->text());
        LineEdit_BusName2->setText(ListBox_AnotherBranch->currentItem()->text());
    } else {
        ComboBox_BranchName->setEditText(QString());
        LineEdit_BusName1->setText(node);
        LineEdit_BusName2->clear();
    }
}

void WinDlgCalBranchChoose::ListBox_AnotherBranch_clicked(QListWidgetItem*)
{
    QListWidgetItem* other = ListBox_AnotherBranch->currentItem();
    if (!other) {
        return;
    }
    QListWidgetItem* node = ListBox_Branch->currentItem();
    const QString i = node ? node->text() : QString(), j = other->text();
    LineEdit_BusName1->setText(i);
    LineEdit_BusName2->setText(j);
    SetCurrentID_Name(i, j);
}

void WinDlgCalBranchChoose::LineEdit_BusName1_textChanged(const QString& text)
{
    if (ListBox_Branch->count() > 0) {
        if (QListWidgetItem* hit = FindItemBeginsWith(ListBox_Branch, text)) {
            ListBox_Branch->setCurrentItem(hit);
        }
    }
}

void WinDlgCalBranchChoose::LineEdit_BusName2_textChanged(const QString& text)
{
    if (ListBox_AnotherBranch->count() > 0) {
        if (QListWidgetItem* hit = FindItemBeginsWith(ListBox_AnotherBranch, text)) {
            ListBox_AnotherBranch->setCurrentItem(hit);
        }
    }
}

void WinDlgCalBranchChoose::LineEdit_BusName1_returnPressed()
{
    QListWidgetItem* hit = FindItemBeginsWith(ListBox_Branch, LineEdit_BusName1->text());
    if (!hit) {
        LineEdit_BusName1->clear();
        LineEdit_BusName2->clear();
        ListBox_AnotherBranch->clear();
        ComboBox_BranchName->setEditText(QString());
        return;
    }
    const QString node = hit->text();
    ListBox_Branch->setCurrentItem(hit);
    LineEdit_BusName1->setText(node);
    AddJ_Names(node);
    if (ListBox_AnotherBranch->count() > 0) {
        // Unlike a click in the list, the second edit is left as the user had it.
        ListBox_AnotherBranch->setCurrentRow(0);
        SetCurrentID_Name(node, ListBox_AnotherBranch->currentItem()->text());
    } else {
        ComboBox_BranchName->setEditText(QString());
    }
}

void WinDlgCalBranchChoose::LineEdit_BusName2_returnPressed()
{
    QListWidgetItem* hit = FindItemBeginsWith(ListBox_AnotherBranch, LineEdit_BusName2->text());
    if (!hit) {
        LineEdit_BusName2->clear();
        ComboBox_BranchName->setEditText(QString());
        return;
    }
    ListBox_AnotherBranch->setCurrentItem(hit);
    QListWidgetItem* node = ListBox_Branch->currentItem();
    SetCurrentID_Name(node ? node->text() : QString(), hit->text());
}

void WinDlgCalBranchChoose::ToolButton_OK_clicked()
{
    if (ComboBox_BranchName->currentText().isEmpty() || LineEdit_BusName1->text().isEmpty() ||
        LineEdit_BusName2->text().isEmpty()) {
        ShowModalBox(ModalBoxKind::Information, QString::fromUtf8(BOX_CAPTION),
                     QString::fromUtf8(BOX_INCOMPLETE));
        return;
    }
    const QByteArray name = GbkCut(ComboBox_BranchName->currentText(), kNameBytes);
    copyName(m_Branch.ID_Name, name);
    const QByteArray i = LineEdit_BusName1->text().toLocal8Bit(),
                     j = LineEdit_BusName2->text().toLocal8Bit();
    if (m_pDB) {
        QSqlQuery q(*m_pDB);
        const QByteArray n = SqlText(m_pDB, name), si = SqlText(m_pDB, i), sj = SqlText(m_pDB, j);
        if (!run(q, FormatText(SQL_CHOSEN, TEMP_TABLE, n.constData(), si.constData(),
                               sj.constData(), n.constData(), si.constData(), sj.constData()))) {
            return;
        }
        if (q.next()) {
            // The result always has the ends in the order they are stored.
            const bool stored = local(q.value(1)) == i;
            copyName(m_Branch.I_Name, stored ? i : j);
            copyName(m_Branch.J_Name, stored ? j : i);
            m_Branch.ID_No = q.value(3).toInt();
            m_Branch.iEleType = q.value(4).toInt();
        }
    }
    accept();
}

void WinDlgCalBranchChoose::ToolButton_Cancel_clicked()
{
    reject();
}
