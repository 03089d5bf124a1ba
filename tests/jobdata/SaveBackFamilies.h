#pragma once
// The save-back tests' way into CLFCalDataTransfer (a friend of it): single families run on
// their own, and the state a run leaves in the transfer.

#include "loadflow/jobdata/LFCalDataTransfer.h"

struct CLFCalDataTransferFamilies
{
    static void Prepare(CLFCalDataTransfer& t, const QString& group, bool newGroup)
    {
        t.m_strGroupName = group;
        t.m_bNewGroup = newGroup;
    }
    static int Generators(CLFCalDataTransfer& t) { return t.SaveL5DataToBaseDB(); }
    static int Breakers(CLFCalDataTransfer& t) { return t.SaveLKDataToBreaker(); }
    static int Shifters(CLFCalDataTransfer& t) { return t.SaveL3DataToShift(); }
    static int ThreeWinding(CLFCalDataTransfer& t) { return t.SaveL3DataToT3W(); }
    static int AddNodes(CLFCalDataTransfer& t) { return t.SaveL1DataToBaseDB(); }
    static int NewElements(const CLFCalDataTransfer& t) { return t.m_nNewElements; }
    static int Nodes(const CLFCalDataTransfer& t) { return t.m_NewNodes.size(); }
    static CSaveBackPattern& Pattern(CLFCalDataTransfer& t) { return t.m_saveBack; }
};
