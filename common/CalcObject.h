#pragma once
// The common base of the suite's calculation modules, the graph handle they carry,
// and the events they send to the application's main widget.
//
// Nothing in the library creates these objects: the modules derive from them.

#include <QEvent>
#include <QObject>
#include <QString>

class CDatabase;

// A custom event with a type chosen by its sender and an untyped data slot.
class CCustomEvent : public QEvent
{
public:
    explicit CCustomEvent(int type) : QEvent(static_cast<QEvent::Type>(type)) {}
    CCustomEvent(const CCustomEvent&) = default;
    CCustomEvent& operator=(const CCustomEvent&) = default;
    ~CCustomEvent() override;

    void setData(void* data) { m_data = data; }
    void* data() const { return m_data; }

private:
    void* m_data = nullptr;
};

// The type of a module's graph handle: a plain handle for derived classes.
class CHandleGraph : public QObject
{
    Q_OBJECT
public:
    CHandleGraph() : QObject(nullptr) {}
    QObject* qObject() { return this; }
};

// A small value record describing a graph element, handed to the calculation-data
// grid and carried by CUpdateEleCustomEvent. What the fields mean is the modules' affair.
class CHandleGraphInfo
{
public:
    CHandleGraphInfo() = default;
    CHandleGraphInfo(const CHandleGraphInfo&) = default;
    CHandleGraphInfo& operator=(const CHandleGraphInfo&) = default;
    virtual ~CHandleGraphInfo();

    QString m_strText; // null until set
    int m_nNumber = -1;
    int m_nValue1 = 0;
    int m_nValue2 = 0;
    int m_nValue3 = 0;
    int m_nValue4 = 0;
    int m_nValue5 = 0;
};

// Tells the main widget that a graph element changed.
class CUpdateEleCustomEvent : public CCustomEvent
{
public:
    CUpdateEleCustomEvent(int type, const CHandleGraphInfo& info) : CCustomEvent(type), m_info(info)
    {}
    CUpdateEleCustomEvent(const CUpdateEleCustomEvent&) = default;
    CUpdateEleCustomEvent& operator=(const CUpdateEleCustomEvent&) = default;
    ~CUpdateEleCustomEvent() override;

    const CHandleGraphInfo& info() const { return m_info; }

private:
    CHandleGraphInfo m_info;
};

// Tells the main widget that labels changed; carries one number.
class CUpdateLabelsCustomEvent : public CCustomEvent
{
public:
    CUpdateLabelsCustomEvent(int type, int value) : CCustomEvent(type), m_value(value) {}
    CUpdateLabelsCustomEvent(const CUpdateLabelsCustomEvent&) = default;
    CUpdateLabelsCustomEvent& operator=(const CUpdateLabelsCustomEvent&) = default;
    ~CUpdateLabelsCustomEvent() override;

    int value() const { return m_value; }

private:
    int m_value;
};

// Base of the calculation modules: the current case, whether a result exists, the
// label configuration, the sub-module order, the graph handle and the base-database
// object. Abstract: a module supplies the calculation steps.
class CCalcObject : public QObject
{
    Q_OBJECT
public:
    CCalcObject() = default;
    // Copies make a new object (QObject itself is not copied: its parent and name are
    // taken over) with all members of the original.
    CCalcObject(const CCalcObject& other);
    CCalcObject& operator=(const CCalcObject& other);
    ~CCalcObject() override;

    // Case lookups; a module answers them from its own case table.
    virtual int GetCase_NoByCase_Name(const QString& name);
    virtual QString GetCase_Name(int caseNo);
    virtual int GetCase_No() const { return m_nCase_No; }
    virtual void SetCase_No(int caseNo) { m_nCase_No = caseNo; }

    // The calculation steps of a module.
    virtual int ImportCalDataToRTDB() = 0;
    virtual int RunCalculation() = 0;
    virtual bool PrepareRTAdditionalGraphData();
    virtual bool PrepareRTGraphData() = 0;
    virtual bool PrepareEleRTLabelsData(const QString& name, int type, int sub);
    virtual bool PrepareRTLabelsData() = 0;
    virtual int SaveCalResult() = 0;
    virtual int LoadCalResult() = 0;
    virtual int ClearCalResult() = 0;

    QObject* qObject() { return this; }
    bool IsHaveResult() const { return m_bHaveResult; }
    void SetHaveResult(bool have) { m_bHaveResult = have; }
    int GetEleLabelsConfNum() const { return m_nEleLabelsConfNum; }
    void SetEleLabelsConfNum(int n) { m_nEleLabelsConfNum = n; }
    int GetSubModuleOrderNum() const { return m_nSubModuleOrderNum; }
    void SetSubModuleOrderNum(int n) { m_nSubModuleOrderNum = n; }
    CHandleGraph* HandleGraph() const { return m_pHandleGraph; }
    CDatabase* GetCDatabase() const { return m_pCDatabase; }

    // Sends an event of `type` with `data` (when not null) to the registered main
    // widget at once: the widget has handled it when this returns, so `data` need live
    // only for the call. Call it on the main widget's thread. Without a registered
    // main widget nothing is delivered (Qt warns of the missing receiver).
    void PostCustomEvent2MainWidget(int type, void* data);

protected:
    int m_nCase_No = 0;
    int m_nReserved = 0; // carried for derived classes; nothing here reads it
    bool m_bHaveResult = false;
    int m_nEleLabelsConfNum = 0;
    int m_nSubModuleOrderNum = 0;
    CHandleGraph* m_pHandleGraph = nullptr; // not owned; set by the derived class
    CDatabase* m_pCDatabase = nullptr;      // not owned; set by the derived class
};
