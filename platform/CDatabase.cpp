#include "platform/CDatabase.h"

CDatabase::~CDatabase() = default;

int CDatabase::SetBakTabModifyFlag(int tableType)
{
    m_flags.push_back(tableType);
    return 0;
}
