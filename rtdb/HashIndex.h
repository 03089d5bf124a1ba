#pragma once
// A hash index of one field of one table: open addressing with linear probing over
// (hash, row) pairs. It stores no keys: a probe hit is confirmed against the row itself,
// so an index costs eight bytes a slot whatever the field's type.

#include <cstdint>
#include <vector>

class HashIndex
{
public:
    static constexpr std::uint32_t kEmpty = 0xFFFFFFFFu;
    static constexpr std::uint32_t kGone = 0xFFFFFFFEu; // a removed entry; probes pass over it

    void insert(std::uint32_t hash, std::uint32_t row)
    {
        if ((m_used + 1) * 4 > m_slots.size() * 3) {
            grow();
        }
        std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            Slot& s = m_slots[i];
            if (s.row == kEmpty || s.row == kGone) {
                if (s.row == kEmpty) {
                    ++m_used;
                }
                s = Slot{hash, row};
                ++m_live;
                return;
            }
        }
    }

    void erase(std::uint32_t hash, std::uint32_t row)
    {
        if (m_slots.empty()) {
            return;
        }
        std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask; m_slots[i].row != kEmpty; i = (i + 1) & mask) {
            if (m_slots[i].row == row && m_slots[i].hash == hash) {
                m_slots[i].row = kGone;
                --m_live;
                return;
            }
        }
    }

    // Calls visit(row) for every entry under this hash; stops when visit returns false.
    template <class F> void find(std::uint32_t hash, F&& visit) const
    {
        if (m_slots.empty()) {
            return;
        }
        std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask; m_slots[i].row != kEmpty; i = (i + 1) & mask) {
            const Slot& s = m_slots[i];
            if (s.row != kGone && s.hash == hash && !visit(s.row)) {
                return;
            }
        }
    }

    void clear()
    {
        m_slots.clear();
        m_slots.shrink_to_fit();
        m_used = m_live = 0;
    }
    std::size_t bytes() const { return m_slots.capacity() * sizeof(Slot); }

private:
    struct Slot
    {
        std::uint32_t hash;
        std::uint32_t row;
    };
    void grow()
    {
        // Double when the live entries fill the table; rehash in place of the same size
        // when it is mostly removed entries.
        std::size_t size = m_slots.empty() ? 64 : m_slots.size();
        if ((m_live + 1) * 2 > size) {
            size *= 2;
        }
        std::vector<Slot> old;
        old.swap(m_slots);
        m_slots.assign(size, Slot{0, kEmpty});
        m_used = m_live = 0;
        for (const Slot& s : old) {
            if (s.row != kEmpty && s.row != kGone) {
                insert(s.hash, s.row);
            }
        }
    }

    std::vector<Slot> m_slots;
    std::size_t m_used = 0; // live and removed entries
    std::size_t m_live = 0;
};
