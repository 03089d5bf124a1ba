#pragma once
// A hash index of one field of one table. Each distinct key has one slot (open
// addressing, linear probing) that heads a doubly linked chain of the rows holding that
// key, so a key shared by many rows (every node's bus number is 0 before topology runs)
// costs no longer probes, and a row leaves its chain in constant time. The index stores
// with each key slot a word that stands for the key: the number itself, or the address
// of the text in the table's storage. A lookup so reaches the key without going through
// the row, which saves a cache miss on every keyed select of a large table.

#include <cstdint>
#include <vector>

class HashIndex
{
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;
    static constexpr std::uint32_t kGone = 0xFFFFFFFEu; // a slot whose key left; probes pass it

    // `key` is the row's key word; `sameKey(slotKey)` tells whether a slot's key equals it.
    template <class SameKey>
    void insert(std::uint32_t hash, std::uint32_t row, std::uint64_t key, SameKey&& sameKey)
    {
        if (row >= m_next.size()) {
            m_next.resize(row + 1, kNone);
            m_prev.resize(row + 1, kNone);
        }
        if ((m_used + 1) * 4 > m_slots.size() * 3) {
            grow();
        }
        const std::size_t mask = m_slots.size() - 1;
        std::size_t free = kNone;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            Slot& s = m_slots[i];
            if (s.head == kNone) {
                if (free == kNone) {
                    free = i;
                    ++m_used;
                }
                break;
            }
            if (s.head == kGone) {
                if (free == kNone) {
                    free = i;
                }
            } else if (s.hash == hash && sameKey(s.key)) {
                m_next[row] = s.head;
                m_prev[row] = kNone;
                m_prev[s.head] = row;
                s.head = row;
                return;
            }
        }
        m_slots[free] = Slot{hash, row, key};
        m_next[row] = m_prev[row] = kNone;
        ++m_keys;
    }

    // Takes the row out of its chain; `hash` is the hash of the key the row holds now.
    // When the row headed its chain, `keyOf(row)` gives the next row's key word.
    template <class KeyOf> void erase(std::uint32_t hash, std::uint32_t row, KeyOf&& keyOf)
    {
        if (row >= m_next.size() || m_slots.empty()) {
            return;
        }
        const std::uint32_t next = m_next[row];
        const std::uint32_t prev = m_prev[row];
        if (prev != kNone) {
            m_next[prev] = next;
            if (next != kNone) {
                m_prev[next] = prev;
            }
            m_next[row] = m_prev[row] = kNone;
            return;
        }
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask; m_slots[i].head != kNone; i = (i + 1) & mask) {
            if (m_slots[i].head == row) {
                m_slots[i].head = next == kNone ? kGone : next;
                m_keys -= next == kNone ? 1 : 0;
                if (next != kNone) {
                    m_prev[next] = kNone;
                    m_slots[i].key = keyOf(next);
                }
                m_next[row] = kNone;
                return;
            }
        }
    }

    // Calls visit(row) for every row of the key that `isKey(slotKey)` accepts.
    // `touch(row)` is called on a likely hit first, so the row can be fetched from memory
    // while the key is compared. False when the key's chain is longer than the rows the index
    // has ever held: it runs in a circle (a row linked twice, as when a key changed without
    // its row leaving the old chain), and the walk stops there instead of going on for ever.
    template <class IsKey, class Visit, class Touch>
    bool find(std::uint32_t hash, IsKey&& isKey, Visit&& visit, Touch&& touch) const
    {
        if (m_slots.empty()) {
            return true;
        }
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask; m_slots[i].head != kNone; i = (i + 1) & mask) {
            const Slot& s = m_slots[i];
            if (s.head == kGone || s.hash != hash) {
                continue;
            }
            touch(s.head);
            if (isKey(s.key)) {
                std::size_t left = m_next.size();
                for (std::uint32_t r = s.head; r != kNone; r = m_next[r]) {
                    if (left-- == 0) {
                        return false;
                    }
                    visit(r);
                }
                return true;
            }
        }
        return true;
    }

    void clear()
    {
        std::vector<Slot>().swap(m_slots);
        std::vector<std::uint32_t>().swap(m_next);
        std::vector<std::uint32_t>().swap(m_prev);
        m_used = 0;
        m_keys = 0;
    }
    // How many distinct keys the rows hold: of two indexed conditions of a query, the one
    // on the field of more keys has the shorter chains.
    std::size_t keys() const { return m_keys; }
    std::size_t bytes() const
    {
        return m_slots.capacity() * sizeof(Slot) +
               (m_next.capacity() + m_prev.capacity()) * sizeof(std::uint32_t);
    }

private:
    struct Slot
    {
        std::uint32_t hash;
        std::uint32_t head;
        std::uint64_t key;
    };
    void grow()
    {
        // Count the keys still present: the table doubles only when they fill it.
        std::size_t keys = 0;
        for (const Slot& s : m_slots) {
            keys += (s.head != kNone && s.head != kGone);
        }
        std::size_t size = m_slots.empty() ? 64 : m_slots.size();
        while ((keys + 1) * 2 > size) {
            size *= 2;
        }
        std::vector<Slot> old(size, Slot{0, kNone, 0});
        old.swap(m_slots);
        m_used = 0;
        const std::size_t mask = m_slots.size() - 1;
        for (const Slot& s : old) {
            if (s.head != kNone && s.head != kGone) {
                std::size_t i = s.hash & mask;
                while (m_slots[i].head != kNone) {
                    i = (i + 1) & mask;
                }
                m_slots[i] = s;
                ++m_used;
            }
        }
    }

    std::vector<Slot> m_slots;
    std::vector<std::uint32_t> m_next, m_prev; // chains, by row
    std::size_t m_used = 0;                    // slots not empty (keys and gone ones)
    std::size_t m_keys = 0;                    // slots that head a chain
};
