#include "rtdb/dbTableDescriptor.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace {
// A function-local registry: descriptors are static members constructed during static
// initialisation of several translation units, in no fixed order.
std::vector<dbTableDescriptor*>& registry()
{
    static std::vector<dbTableDescriptor*> descriptors;
    return descriptors;
}
std::atomic<std::uint64_t> g_serials{1};
} // namespace

dbTableDescriptor::dbTableDescriptor(const char* name, std::size_t recordSize,
                                     std::initializer_list<dbFieldDescriptor> fields)
    : m_name(name), m_size(recordSize), m_fields(fields), m_serial(g_serials++)
{
    for (const dbFieldDescriptor& f : m_fields) {
        if (f.type == dbFieldText) {
            m_textOffsets.push_back(f.offset);
        }
    }
    m_tableNo = static_cast<int>(registry().size());
    registry().push_back(this);
}

dbTableDescriptor::~dbTableDescriptor()
{
    auto& r = registry();
    auto it = std::find(r.begin(), r.end(), this);
    if (it != r.end()) {
        *it = nullptr; // keep the slots of the others
    }
}

const dbFieldDescriptor* dbTableDescriptor::findField(const char* name, std::size_t len) const
{
    for (const dbFieldDescriptor& f : m_fields) {
        if (std::strlen(f.name) == len && std::memcmp(f.name, name, len) == 0) {
            return &f;
        }
    }
    return nullptr;
}

const std::vector<dbTableDescriptor*>& dbTableDescriptor::all()
{
    return registry();
}
