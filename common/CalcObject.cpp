#include "common/CalcObject.h"

#include "common/MainWidget.h"

#include <QApplication>
#include <QWidget>

CCustomEvent::~CCustomEvent() = default;
CHandleGraphInfo::~CHandleGraphInfo() = default;
CUpdateEleCustomEvent::~CUpdateEleCustomEvent() = default;
CUpdateLabelsCustomEvent::~CUpdateLabelsCustomEvent() = default;

CCalcObject::CCalcObject(const CCalcObject& other) : QObject(other.parent())
{
    setObjectName(other.objectName());
    *this = other;
}

CCalcObject& CCalcObject::operator=(const CCalcObject& other)
{
    m_nCase_No = other.m_nCase_No;
    m_nReserved = other.m_nReserved;
    m_bHaveResult = other.m_bHaveResult;
    m_nEleLabelsConfNum = other.m_nEleLabelsConfNum;
    m_nSubModuleOrderNum = other.m_nSubModuleOrderNum;
    m_pHandleGraph = other.m_pHandleGraph;
    m_pCDatabase = other.m_pCDatabase;
    return *this;
}

CCalcObject::~CCalcObject() = default;

int CCalcObject::GetCase_NoByCase_Name(const QString&)
{
    return -1;
}

QString CCalcObject::GetCase_Name(int)
{
    return QStringLiteral("");
}

bool CCalcObject::PrepareRTAdditionalGraphData()
{
    return true;
}

bool CCalcObject::PrepareEleRTLabelsData(const QString&, int, int)
{
    return true;
}

void CCalcObject::PostCustomEvent2MainWidget(int type, void* data)
{
    CCustomEvent event(type);
    if (data) {
        event.setData(data);
    }
    QWidget* receiver = MainWidget();
    if (!receiver) {
        qWarning("PostCustomEvent2MainWidget: no main widget is registered; event %d dropped",
                 type);
        return;
    }
    QApplication::sendEvent(receiver, &event);
}
