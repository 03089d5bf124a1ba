#include "Gallery.h"

#include "ShowDialog.h"

#include "common/GbkWidth.h"
#include "dialogs/CaseChoosers.h"
#include "dialogs/CurveCanvas.h"
#include "dialogs/DataTable.h"
#include "dialogs/DlgNoBuy.h"
#include "dialogs/WinDlgCalBranchChoose.h"
#include "dialogs/WinDlgCalBusChoose.h"
#include "dialogs/WinDlgCalDataSaveBack.h"
#include "dialogs/WinDlgFindText.h"
#include "dialogs/WinDlgRTDBCalData.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSqlQuery>
#include <QVBoxLayout>
#include <QVariant>
#include <cstring>
#include <iterator>
#include <memory>

namespace gallery {
namespace {

QString Cancelled()
{
    return QStringLiteral("cancelled");
}

// What the dialogs open on comes from the sample itself, so that any network shows them
// in use: the ends of job 0's fifth AC line (its last on a smaller network) and its second
// generator.
struct Preset
{
    QString from, to, generator;
};

Preset PresetOf(QSqlDatabase* db)
{
    Preset p;
    QSqlQuery q(*db);
    q.exec(QStringLiteral("SELECT I_Name, J_Name FROM L2_0 ORDER BY EleID"));
    for (int k = 0; k < 5 && q.next(); ++k) {
        p.from = q.value(0).toString();
        p.to = q.value(1).toString();
    }
    q.exec(QStringLiteral("SELECT ID_Name FROM L5_0 ORDER BY EleID LIMIT 2"));
    while (q.next()) {
        p.generator = q.value(0).toString();
    }
    return p;
}

// The job's AC lines as a module's grid shows them: name and ends as text, the
// impedances checked as real numbers, the state as a whole number.
class LineGrid : public WinDlgRTDBCalData
{
public:
    LineGrid(QSqlDatabase* db) : WinDlgRTDBCalData(CHandleGraphInfo()), m_db(db) {}
    void GetCalDBTableName(char* name) override { std::strcpy(name, "L2_0"); }
    void Init() override
    {
        struct Column
        {
            const char* field;
            const char* caption;
            int type;
            int width;
        };
        static const Column columns[] = {
            {"ID_Name", "名称", 0, 70},        {"I_Name", "首端节点", 0, 80},
            {"J_Name", "末端节点", 0, 80},     {"R1", "电阻(pu)", 2, 80},
            {"X1", "电抗(pu)", 2, 80},         {"B1_Half", "半充电电纳(pu)", 2, 110},
            {"Valid", "运行状态", 1, 70}};
        const int n = int(std::size(columns));
        char table[32];
        GetCalDBTableName(table);
        QStringList fields, captions;
        for (const Column& c : columns) {
            fields << c.field;
            captions << QString::fromUtf8(c.caption);
        }
        QSqlQuery q(*m_db);
        q.exec(QStringLiteral("SELECT %1 FROM %2 ORDER BY EleID").arg(fields.join(','), table));
        QList<QStringList> rows;
        while (q.next()) {
            QStringList row;
            for (int c = 0; c < n; ++c) {
                row << q.value(c).toString();
            }
            rows << row;
        }
        table_CalData->setColumnCount(n);
        table_CalData->setRowCount(int(rows.size()));
        table_CalData->setHorizontalHeaderLabels(captions);
        for (int c = 0; c < n; ++c) {
            m_columns.push_back(std::make_unique<CFieldInfo>(table_CalData));
            m_columns.back()->SetFieldName(columns[c].field);
            m_columns.back()->SetFieldName_CH(columns[c].caption);
            m_columns.back()->SetIndexPos(c);
            m_columns.back()->SetType(columns[c].type);
            m_columns.back()->SetColumnWidth(columns[c].width, true);
            m_types.push_back(std::make_unique<CalDataFieldInfo>());
            m_types.back()->nType = columns[c].type;
            m_pFieldList->append(m_types.back().get());
        }
        table_CalData->setColumnReadOnly(0, true);
        for (int r = 0; r < rows.size(); ++r) {
            for (int c = 0; c < n; ++c) {
                table_CalData->setText(r, c, rows[r][c]);
            }
        }
        resize(640, 420);
    }

private:
    QSqlDatabase* m_db;
    std::vector<std::unique_ptr<CFieldInfo>> m_columns;
    std::vector<std::unique_ptr<CalDataFieldInfo>> m_types;
};

// A module's own canvas: the library's canvas is a scene, which a view shows.
class CanvasDialog : public QDialog
{
public:
    explicit CanvasDialog(const std::vector<report::ProfileBus>& profile)
        : m_canvas(report::MakeVoltageProfileCanvas(profile))
    {
        setWindowTitle(QStringLiteral("电压曲线 (CDlgCurveCanvas)"));
        auto* view = new QGraphicsView(m_canvas.get(), this);
        view->setFrameShape(QFrame::NoFrame);
        view->setBackgroundBrush(Qt::white);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(4, 4, 4, 4);
        layout->addWidget(view);
        const QRect r = m_canvas->sceneRect().toRect();
        view->setMinimumSize(r.width() + 4, r.height() + 4);
    }

private:
    std::unique_ptr<CDlgCurveCanvas> m_canvas;
};

QString BranchChooser(Context& c)
{
    WinDlgCalBranchChoose dlg(1, c.db, {"CDB_ACLINEBAK", "CDB_TRANS_2WBAK"});
    const Preset p = PresetOf(c.db);
    char name[GbkBufferSize(kNameBytes)] = "", i[sizeof name], j[sizeof name];
    GbkCopy(i, p.from.toLocal8Bit(), kNameBytes);
    GbkCopy(j, p.to.toLocal8Bit(), kNameBytes);
    c.beforeExec(&dlg);
    if (dlg.ChooseBranch(name, i, j) != 0) {
        return Cancelled();
    }
    return QStringLiteral("branch %1 between %2 and %3, circuit %4")
        .arg(QString::fromLocal8Bit(dlg.m_Branch.ID_Name),
             QString::fromLocal8Bit(dlg.m_Branch.I_Name),
             QString::fromLocal8Bit(dlg.m_Branch.J_Name))
        .arg(dlg.m_Branch.ID_No);
}

QString BusChooser(Context& c)
{
    WinDlgCalBusChoose dlg(1, 0, c.db, PresetOf(c.db).to, true);
    c.beforeExec(&dlg);
    return dlg.exec() == QDialog::Accepted ? QStringLiteral("bus %1").arg(dlg.GetName())
                                           : Cancelled();
}

QString TerminalChooser(Context& c)
{
    WinDlgCalEleTerm1Choose dlg(c.db, QStringLiteral("L5_0"), QStringLiteral("ID_Name"),
                                PresetOf(c.db).generator);
    c.beforeExec(&dlg);
    return dlg.exec() == QDialog::Accepted
               ? QStringLiteral("%1 at node %2").arg(dlg.GetName(), dlg.GetNodeName())
               : Cancelled();
}

QString CaseChooser(Context& c)
{
    WinDlgCaseNoSearch dlg(c.db, QStringLiteral("LF_CASE"));
    c.beforeExec(&dlg);
    return dlg.exec() == QDialog::Accepted ? QStringLiteral("case %1").arg(dlg.GetCaseName())
                                           : Cancelled();
}

QString CaseComboBox(Context& c)
{
    // The box is a widget in a module's own dialog, which fills it and emits its signals.
    QDialog dlg;
    dlg.setWindowTitle(QStringLiteral("计算方案 (CComboBoxCaseNo)"));
    auto* combo = new CComboBoxCaseNo(&dlg);
    QSqlQuery q(*c.db);
    q.exec(QStringLiteral("SELECT Case_Name FROM LF_CASE WHERE Case_No > 0 ORDER BY Case_No"));
    while (q.next()) {
        combo->addItem(q.value(0).toString());
    }
    combo->EmititemsChanged();
    auto* heard = new QLabel(&dlg);
    QObject::connect(combo, &CComboBoxCaseNo::currentTextChanged, heard,
                     [heard](const QString& text) {
                         heard->setText(QStringLiteral("currentTextChanged: %1").arg(text));
                     });
    QObject::connect(combo, qOverload<int>(&QComboBox::activated), combo,
                     [combo](int) { combo->EmitcurrentTextChanged(combo->currentText()); });
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dlg);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dlg, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dlg, &QDialog::reject);
    auto* layout = new QVBoxLayout(&dlg);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(QStringLiteral("潮流方案:"), &dlg));
    row->addWidget(combo, 1);
    layout->addLayout(row);
    layout->addWidget(heard);
    layout->addWidget(buttons);
    dlg.resize(320, dlg.sizeHint().height());
    c.beforeExec(&dlg);
    return dlg.exec() == QDialog::Accepted ? QStringLiteral("case %1").arg(combo->currentText())
                                           : Cancelled();
}

QString SaveBackDialog(Context& c)
{
    WinDlgCalDataSaveBack dlg(c.db);
    c.beforeExec(&dlg);
    if (dlg.exec() != QDialog::Accepted) {
        return Cancelled();
    }
    // The gallery only asks: nothing is saved.
    return dlg.IsSaveAsNewDataGroup()
               ? QStringLiteral("save into the new group %1").arg(dlg.NewDataGroup())
               : QStringLiteral("save into the existing groups");
}

QString Grid(Context& c)
{
    LineGrid grid(c.db);
    grid.Init();
    c.beforeExec(&grid);
    // The gallery keeps the edits to itself: nothing goes back into the job table.
    return grid.exec() == QDialog::Accepted ? QStringLiteral("edits confirmed (not saved)")
                                            : Cancelled();
}

QString FindOverGrid(Context& c)
{
    LineGrid grid(c.db);
    grid.Init();
    grid.show();
    WaitExposed(&grid);
    WinDlgFindText find(&grid);
    find.setTable(grid.table_CalData);
    find.comboBox_Text->setEditText(PresetOf(c.db).to);
    find.move(grid.geometry().topRight() - QPoint(find.width() / 2, -60));
    c.beforeExec(&find);
    find.exec();
    const int row = grid.table_CalData->currentRow(), col = grid.table_CalData->currentColumn();
    return row >= 0 ? QStringLiteral("found in row %1, column %2: %3")
                          .arg(row + 1)
                          .arg(col + 1)
                          .arg(grid.table_CalData->text(row, col))
                    : QStringLiteral("nothing found");
}

QString Canvas(Context& c)
{
    CanvasDialog dlg(*c.profile);
    c.beforeExec(&dlg);
    dlg.exec();
    return QStringLiteral("closed");
}

QString NotPurchased(Context& c)
{
    DlgNoBuy dlg(QStringLiteral("暂态稳定计算"));
    c.beforeExec(&dlg);
    dlg.exec();
    return QStringLiteral("closed");
}

} // namespace

// Chooser dialogs first, then the save-back, the grid, the display and the notice.
std::vector<Entry> Entries()
{
    return {
        {"branch_chooser", "Branch chooser: the base database's lines and transformers",
         BranchChooser},
        {"bus_chooser", "Bus chooser: the buses of job 0", BusChooser},
        {"terminal_chooser", "Terminal chooser: the generators of job 0", TerminalChooser},
        {"case_chooser", "Case chooser: the cases of LF_CASE", CaseChooser},
        {"case_combo_box", "Case combo box, in a module's dialog", CaseComboBox},
        {"saveback_dialog", "Save-back dialog: the data groups", SaveBackDialog},
        {"caldata_grid", "Calculation-data grid: the AC lines of job 0", Grid},
        {"find_dialog", "Find dialog over the calculation-data grid", FindOverGrid},
        {"curve_canvas", "Curve canvas: the voltage profile of the sample", Canvas},
        {"not_purchased", "Notice of a module not purchased", NotPurchased},
    };
}

int RunGalleryWindow(const std::vector<Entry>& entries, Context& context)
{
    QDialog window;
    window.setWindowTitle(QStringLiteral("calcdata gallery"));
    auto* list = new QListWidget(&window);
    for (const Entry& e : entries) {
        list->addItem(e.title);
    }
    list->setCurrentRow(0);
    auto* outcome = new QLabel(QStringLiteral("Double-click a dialog to open it."), &window);
    auto* open = new QPushButton(QStringLiteral("Open"), &window);
    auto* all = new QPushButton(QStringLiteral("Open all in turn"), &window);
    auto* close = new QPushButton(QStringLiteral("Close"), &window);
    auto run = [&](int k) {
        if (k < 0 || k >= int(entries.size())) {
            return;
        }
        list->setCurrentRow(k);
        outcome->setText(QStringLiteral("%1: %2").arg(entries[k].name,
                                                      entries[k].open(context)));
    };
    QObject::connect(list, &QListWidget::itemActivated, &window,
                     [&](QListWidgetItem* item) { run(list->row(item)); });
    QObject::connect(open, &QPushButton::clicked, &window, [&] { run(list->currentRow()); });
    QObject::connect(all, &QPushButton::clicked, &window, [&] {
        for (int k = 0; k < int(entries.size()); ++k) {
            run(k);
        }
    });
    QObject::connect(close, &QPushButton::clicked, &window, &QDialog::accept);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(open);
    buttons->addWidget(all);
    buttons->addStretch(1);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(list);
    layout->addWidget(outcome);
    layout->addLayout(buttons);
    window.resize(480, 360);
    window.exec();
    return 0;
}

} // namespace gallery
