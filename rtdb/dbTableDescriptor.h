#pragma once
// Descriptions of record classes: which fields a record has, of which type and where.
// The engine copies whole records and knows fields only through these descriptions,
// so it needs no code per record class.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

class dbDatabase;

// The field types the library uses: text is a `const char*` to NUL-terminated bytes,
// real is a 32-bit float.
enum dbFieldType { dbFieldText, dbFieldInt, dbFieldUInt, dbFieldReal, dbFieldDouble };

template <class T> struct dbFieldTypeOf;
template <> struct dbFieldTypeOf<const char*>
{
    static constexpr dbFieldType value = dbFieldText;
};
template <> struct dbFieldTypeOf<int>
{
    static constexpr dbFieldType value = dbFieldInt;
};
template <> struct dbFieldTypeOf<unsigned int>
{
    static constexpr dbFieldType value = dbFieldUInt;
};
template <> struct dbFieldTypeOf<float>
{
    static constexpr dbFieldType value = dbFieldReal;
};
template <> struct dbFieldTypeOf<double>
{
    static constexpr dbFieldType value = dbFieldDouble;
};

struct dbFieldDescriptor
{
    const char* name;
    std::size_t offset;
    dbFieldType type;
    bool hashed; // equality selects on this field go through a hash index
};

// A field of record class T; RTDB_KEY marks a field that queries test for equality.
#define RTDB_FIELD(T, f)                                                                           \
    dbFieldDescriptor                                                                              \
    {                                                                                              \
#f, offsetof(T, f), dbFieldTypeOf < decltype(T::f)> ::value, false                         \
    }
#define RTDB_KEY(T, f)                                                                             \
    dbFieldDescriptor                                                                              \
    {                                                                                              \
#f, offsetof(T, f), dbFieldTypeOf < decltype(T::f)> ::value, true                          \
    }

// One per record class, as the static member `dbDescriptor`. Every descriptor made is
// known to the engine, which gives each open database one table per descriptor.
class dbTableDescriptor
{
public:
    dbTableDescriptor(const char* name, std::size_t recordSize,
                      std::initializer_list<dbFieldDescriptor> fields);
    ~dbTableDescriptor();
    dbTableDescriptor(const dbTableDescriptor&) = delete;
    dbTableDescriptor& operator=(const dbTableDescriptor&) = delete;

    const char* getName() const { return m_name; }
    std::size_t recordSize() const { return m_size; }
    const std::vector<dbFieldDescriptor>& fields() const { return m_fields; }
    // The field of that name (case-sensitive, as record members are), or null.
    const dbFieldDescriptor* findField(const char* name, std::size_t len) const;
    // Where the text fields stand in a record, in field order.
    const std::vector<std::size_t>& textOffsets() const { return m_textOffsets; }
    // A number no other descriptor of the program has had, even one made later at the
    // same address.
    std::uint64_t serial() const { return m_serial; }

    // The database this class's records live in: the last one constructed or opened.
    dbDatabase* getDatabase() const { return m_db; }

    // Every descriptor of the program, in order of construction.
    static const std::vector<dbTableDescriptor*>& all();

private:
    friend class dbDatabase;
    const char* m_name;
    std::size_t m_size;
    std::vector<dbFieldDescriptor> m_fields;
    std::vector<std::size_t> m_textOffsets;
    std::uint64_t m_serial;
    dbDatabase* m_db = nullptr;
    int m_tableNo = -1; // position in all(), the table's slot in a database
};
