#pragma once
// Stand-in for the suite's closed BaseDB library. The library only tells it, after a
// save-back, which working copies (`...BAK` tables) changed, by table type number.
// This stand-in remembers the numbers in the order they came, so that hosts and tests
// can read them; a host with the real BaseDB derives or swaps in its own class.

#include <vector>

class CDatabase
{
public:
    CDatabase() = default;
    virtual ~CDatabase();

    // Told that the working copy of the table with this type number changed.
    // Returns 0.
    virtual int SetBakTabModifyFlag(int tableType);

    // The type numbers flagged so far, oldest first.
    const std::vector<int>& ModifiedTableTypes() const { return m_flags; }
    void ClearModifiedTableTypes() { m_flags.clear(); }

private:
    std::vector<int> m_flags;
};
