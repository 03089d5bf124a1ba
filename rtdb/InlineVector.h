#pragma once
// A vector of trivially copyable values whose first N live inside the object, so that
// the small lists of a keyed select (its parameters, their text, the one record found)
// take no allocation. Beyond N the values move to the heap.

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <vector>

template <class T, std::size_t N> class InlineVector
{
    static_assert(std::is_trivially_copyable<T>::value, "values are copied as bytes");

public:
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    T* data() { return m_heap.empty() ? m_inline : m_heap.data(); }
    const T* data() const { return m_heap.empty() ? m_inline : m_heap.data(); }
    T* begin() { return data(); }
    T* end() { return data() + m_size; }
    const T* begin() const { return data(); }
    const T* end() const { return data() + m_size; }
    T& operator[](std::size_t i) { return data()[i]; }
    const T& operator[](std::size_t i) const { return data()[i]; }
    T& back() { return data()[m_size - 1]; }

    void clear()
    {
        m_heap.clear();
        m_size = 0;
    }
    void reserve(std::size_t n)
    {
        if (n > N) {
            spill();
            m_heap.reserve(n);
        }
    }
    void push_back(const T& v)
    {
        if (m_heap.empty() && m_size < N) {
            m_inline[m_size++] = v;
            return;
        }
        spill();
        m_heap.push_back(v);
        ++m_size;
    }
    void append(const T* values, std::size_t n)
    {
        if (m_heap.empty() && m_size + n <= N) {
            std::copy(values, values + n, m_inline + m_size);
            m_size += n;
            return;
        }
        spill();
        m_heap.insert(m_heap.end(), values, values + n);
        m_size += n;
    }

private:
    void spill()
    {
        if (m_heap.empty()) {
            m_heap.assign(m_inline, m_inline + m_size);
        }
    }

    T m_inline[N];
    std::vector<T> m_heap; // holds all values once they outgrow m_inline
    std::size_t m_size = 0;
};
