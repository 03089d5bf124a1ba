#include "rtdb/dbDatabase.h"

#include "rtdb/HashIndex.h"
#include "rtdb/dbQuery.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace {

const char kEmptyText[] = "";
// Per record class: indexed fields beyond the first eight are searched by scan.
constexpr std::size_t kMaxIndexes = 8;
constexpr std::size_t kMaxTexts = 64;

// Texts of one table, packed into chunks. A text replaced by an update stays until its
// table is emptied and committed, so that every pointer handed out by a fetch remains
// good while its record stands, rollback included.
class TextArena
{
public:
    const char* store(const char* s, std::size_t len)
    {
        const std::size_t need = len + 1;
        if (need > kChunk / 4) {
            m_big.emplace_back(new char[need]);
            std::memcpy(m_big.back().get(), s, need);
            m_bigBytes += need;
            return m_big.back().get();
        }
        if (m_chunks.empty() || m_used + need > kChunk) {
            m_chunks.emplace_back(new char[kChunk]);
            m_used = 0;
        }
        char* p = m_chunks.back().get() + m_used;
        std::memcpy(p, s, need);
        m_used += need;
        return p;
    }
    void clear()
    {
        m_chunks.clear();
        m_big.clear();
        m_used = m_bigBytes = 0;
    }
    std::size_t allocated() const { return m_chunks.size() * kChunk + m_bigBytes; }

private:
    static constexpr std::size_t kChunk = 64 * 1024;
    std::vector<std::unique_ptr<char[]>> m_chunks;
    std::vector<std::unique_ptr<char[]>> m_big;
    std::size_t m_used = 0;
    std::size_t m_bigBytes = 0;
};

std::uint32_t mix(std::uint64_t x)
{
    x ^= x >> 33;
    x *= 0xff51afd7ed558ccdULL;
    x ^= x >> 33;
    x *= 0xc4ceb9fe1a85ec53ULL;
    x ^= x >> 33;
    return static_cast<std::uint32_t>(x);
}

std::uint32_t hashText(const char* s)
{
    std::uint64_t h = 1469598103934665603ULL; // FNV-1a
    for (; *s; ++s) {
        h = (h ^ static_cast<unsigned char>(*s)) * 1099511628211ULL;
    }
    return mix(h);
}

std::uint32_t hashReal(double d)
{
    if (d == 0) {
        d = 0; // -0 and 0 are equal
    }
    std::uint64_t bits;
    std::memcpy(&bits, &d, sizeof bits);
    return mix(bits);
}

std::uint32_t hashInteger(long long v)
{
    return mix(static_cast<std::uint64_t>(v));
}

std::size_t fieldSize(const dbFieldDescriptor& f)
{
    return f.type == dbFieldText ? sizeof(const char*) : (f.type == dbFieldDouble ? 8 : 4);
}

template <class T> T fieldAt(const char* row, const dbFieldDescriptor& f)
{
    T v;
    std::memcpy(&v, row + f.offset, sizeof v);
    return v;
}

const char* textAt(const char* row, const dbFieldDescriptor& f)
{
    const char* s = fieldAt<const char*>(row, f);
    return s ? s : kEmptyText;
}

std::uint32_t hashField(const char* row, const dbFieldDescriptor& f)
{
    switch (f.type) {
    case dbFieldText:
        return hashText(textAt(row, f));
    case dbFieldInt:
        return hashInteger(fieldAt<int>(row, f));
    case dbFieldUInt:
        return hashInteger(fieldAt<unsigned int>(row, f));
    case dbFieldReal:
        return hashReal(fieldAt<float>(row, f));
    case dbFieldDouble:
        return hashReal(fieldAt<double>(row, f));
    }
    return 0;
}

template <class A, class B> int compare3(A a, B b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

// Compares a row's field with a value of the right kind (checked when the query compiled).
int compareField(const char* row, const dbFieldDescriptor& f, const dbQuery::Value& v)
{
    switch (f.type) {
    case dbFieldText: {
        int c = std::strcmp(textAt(row, f), v.s);
        return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }
    case dbFieldInt:
        return v.kind == dbQuery::Value::Integer
                   ? compare3(static_cast<long long>(fieldAt<int>(row, f)), v.i)
                   : compare3(static_cast<double>(fieldAt<int>(row, f)), v.d);
    case dbFieldUInt:
        return v.kind == dbQuery::Value::Integer
                   ? compare3(static_cast<long long>(fieldAt<unsigned int>(row, f)), v.i)
                   : compare3(static_cast<double>(fieldAt<unsigned int>(row, f)), v.d);
    case dbFieldReal:
        return compare3(static_cast<double>(fieldAt<float>(row, f)),
                        v.kind == dbQuery::Value::Integer ? static_cast<double>(v.i) : v.d);
    case dbFieldDouble:
        return compare3(fieldAt<double>(row, f),
                        v.kind == dbQuery::Value::Integer ? static_cast<double>(v.i) : v.d);
    }
    return 0;
}

int compareRows(const char* a, const char* b, const dbFieldDescriptor& f)
{
    switch (f.type) {
    case dbFieldText: {
        int c = std::strcmp(textAt(a, f), textAt(b, f));
        return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }
    case dbFieldInt:
        return compare3(fieldAt<int>(a, f), fieldAt<int>(b, f));
    case dbFieldUInt:
        return compare3(fieldAt<unsigned int>(a, f), fieldAt<unsigned int>(b, f));
    case dbFieldReal:
        return compare3(fieldAt<float>(a, f), fieldAt<float>(b, f));
    case dbFieldDouble:
        return compare3(fieldAt<double>(a, f), fieldAt<double>(b, f));
    }
    return 0;
}

// The word an index keeps for a row's key: the text's address in the table, or the
// number's bits.
std::uint64_t keyWord(const char* row, const dbFieldDescriptor& f)
{
    if (f.type == dbFieldText) {
        return reinterpret_cast<std::uintptr_t>(textAt(row, f));
    }
    std::uint64_t w = 0;
    std::memcpy(&w, row + f.offset, fieldSize(f));
    return w;
}

const char* keyText(std::uint64_t w)
{
    return reinterpret_cast<const char*>(static_cast<std::uintptr_t>(w));
}

bool sameKeyWord(const dbFieldDescriptor& f, std::uint64_t a, std::uint64_t b)
{
    if (f.type == dbFieldText) {
        return a == b || std::strcmp(keyText(a), keyText(b)) == 0;
    }
    if (f.type == dbFieldReal || f.type == dbFieldDouble) {
        char ra[8], rb[8];
        std::memcpy(ra, &a, 8);
        std::memcpy(rb, &b, 8);
        dbFieldDescriptor alone = f;
        alone.offset = 0;
        return compareRows(ra, rb, alone) == 0; // 0.0 and -0.0 are one key
    }
    return a == b;
}

// Whether an index's key word equals a query value (of a kind the index can answer).
bool keyEquals(const dbFieldDescriptor& f, std::uint64_t w, const dbQuery::Value& v)
{
    char image[8];
    std::memcpy(image, &w, 8);
    dbFieldDescriptor alone = f;
    alone.offset = 0;
    if (f.type == dbFieldText) {
        return std::strcmp(keyText(w), v.s) == 0;
    }
    return compareField(image, alone, v) == 0;
}

bool holds(int c, dbQuery::Op op)
{
    switch (op) {
    case dbQuery::Eq:
        return c == 0;
    case dbQuery::Ne:
        return c != 0;
    case dbQuery::Lt:
        return c < 0;
    case dbQuery::Le:
        return c <= 0;
    case dbQuery::Gt:
        return c > 0;
    case dbQuery::Ge:
        return c >= 0;
    }
    return false;
}

// The hash an equality value has in a field's index, when the index can answer it.
bool valueHash(const dbFieldDescriptor& f, const dbQuery::Value& v, std::uint32_t& h)
{
    switch (f.type) {
    case dbFieldText:
        h = hashText(v.s);
        return true;
    case dbFieldInt:
    case dbFieldUInt:
        if (v.kind != dbQuery::Value::Integer) {
            return false;
        }
        h = hashInteger(v.i);
        return true;
    case dbFieldReal:
    case dbFieldDouble:
        h = hashReal(v.kind == dbQuery::Value::Integer ? static_cast<double>(v.i) : v.d);
        return f.type == dbFieldDouble; // a float field's value is widened: compare by scan
    }
    return false;
}

std::atomic<std::uint64_t> g_serials{1};

struct ThreadHold
{
    std::uint64_t serial;
    int mode;
};
thread_local std::vector<ThreadHold> t_holds;

} // namespace

struct dbDatabase::Table
{
    const dbTableDescriptor* desc;
    std::size_t stride;
    std::vector<char> rows;
    std::vector<std::uint8_t> live;
    std::vector<std::uint32_t> stamp; // transaction whose undo entry already covers the row
    std::size_t liveCount = 0;
    std::vector<const dbFieldDescriptor*> textFields;
    struct Index
    {
        const dbFieldDescriptor* field;
        HashIndex index;
    };
    std::vector<Index> indexes;
    TextArena texts;

    char* row(std::uint32_t r) { return rows.data() + r * stride; }
    const char* row(std::uint32_t r) const { return rows.data() + r * stride; }
    std::uint32_t count() const { return static_cast<std::uint32_t>(live.size()); }
    const HashIndex* indexOf(const dbFieldDescriptor* f) const
    {
        for (const Index& i : indexes) {
            if (i.field == f) {
                return &i.index;
            }
        }
        return nullptr;
    }
    void indexRow(std::uint32_t r)
    {
        for (Index& i : indexes) {
            indexField(i, r);
        }
    }
    void indexField(Index& i, std::uint32_t r)
    {
        const dbFieldDescriptor& f = *i.field;
        const std::uint64_t key = keyWord(row(r), f);
        i.index.insert(hashField(row(r), f), r, key,
                       [&](std::uint64_t other) { return sameKeyWord(f, key, other); });
    }
    void unindexField(Index& i, std::uint32_t hash, std::uint32_t r)
    {
        const dbFieldDescriptor& f = *i.field;
        i.index.erase(hash, r, [&](std::uint32_t next) { return keyWord(row(next), f); });
    }
    void unindexRow(std::uint32_t r)
    {
        for (Index& i : indexes) {
            unindexField(i, hashField(row(r), *i.field), r);
        }
    }
    // Copies the record's texts into the table and points the row at the copies; a text
    // equal to the one the row holds keeps the row's copy.
    void storeTexts(char* dst, const char* previous)
    {
        for (const dbFieldDescriptor* f : textFields) {
            const char* s = fieldAt<const char*>(dst, *f);
            const char* kept = nullptr;
            if (!s || !*s) {
                kept = kEmptyText;
            } else if (previous) {
                const char* old = textAt(previous, *f);
                if (old == s || std::strcmp(old, s) == 0) {
                    kept = old;
                }
            }
            if (!kept) {
                kept = texts.store(s, std::strlen(s));
            }
            std::memcpy(dst + f->offset, &kept, sizeof kept);
        }
    }
    void clearStorage()
    {
        rows.clear();
        rows.shrink_to_fit();
        live.clear();
        live.shrink_to_fit();
        stamp.clear();
        stamp.shrink_to_fit();
        texts.clear();
        for (Index& i : indexes) {
            i.index.clear();
        }
    }
};

struct dbDatabase::UndoEntry
{
    enum Kind : std::uint8_t { Insert, Update, Remove } kind;
    std::uint32_t table;
    std::uint32_t row;
    std::size_t bytes; // Update: where the old row stands in m_undoBytes
};

// The old rows of a transaction, in chunks that never move: the store grows without
// copying what it holds, and keeps its chunks for the next transaction up to a limit, so
// that a large network's transactions do not allocate and touch fresh memory each time.
struct dbDatabase::UndoBytes
{
    static constexpr std::size_t kChunk = std::size_t(1) << 20;
    static constexpr std::size_t kKept = 64; // chunks kept after a transaction ends

    // Copies `n` bytes (a row: at most a chunk) and tells where they stand.
    std::size_t add(const char* p, std::size_t n)
    {
        std::size_t chunk = used / kChunk;
        if (used % kChunk + n > kChunk) { // a row never spans two chunks
            ++chunk;
            used = chunk * kChunk;
        }
        if (chunk >= chunks.size()) {
            chunks.emplace_back(new char[kChunk]);
        }
        std::memcpy(chunks[chunk].get() + used % kChunk, p, n);
        const std::size_t at = used;
        used += n;
        return at;
    }
    const char* at(std::size_t offset) const
    {
        return chunks[offset / kChunk].get() + offset % kChunk;
    }
    void clear()
    {
        used = 0;
        if (chunks.size() > kKept) {
            chunks.resize(kKept);
        }
    }

    std::vector<std::unique_ptr<char[]>> chunks;
    std::size_t used = 0;
};

dbDatabase::dbDatabase() : m_serial(g_serials++), m_undoBytes(std::make_unique<UndoBytes>())
{
    for (dbTableDescriptor* d : dbTableDescriptor::all()) {
        if (d && !d->m_db) {
            d->m_db = this;
        }
    }
}

dbDatabase::~dbDatabase()
{
    close();
    for (dbTableDescriptor* d : dbTableDescriptor::all()) {
        if (d && d->m_db == this) {
            d->m_db = nullptr;
        }
    }
}

bool dbDatabase::open(const char* name)
{
    if (m_open) {
        handleError(dbDatabaseOpenError, "the real-time database is open already");
        return false;
    }
    m_name = name ? name : "";
    m_tables.clear();
    for (dbTableDescriptor* d : dbTableDescriptor::all()) {
        auto t = std::make_unique<Table>();
        if (d) {
            d->m_db = this;
            t->desc = d;
            t->stride = d->recordSize();
            for (const dbFieldDescriptor& f : d->fields()) {
                if (f.type == dbFieldText) {
                    t->textFields.push_back(&f);
                }
                if (f.hashed && t->indexes.size() < kMaxIndexes) {
                    t->indexes.push_back(Table::Index{&f, HashIndex()});
                }
            }
        }
        if (t->textFields.size() > kMaxTexts || t->stride > UndoBytes::kChunk) {
            handleError(dbDatabaseOpenError,
                        "a record class has more text fields or bytes than supported");
            m_tables.clear();
            return false;
        }
        m_tables.push_back(std::move(t));
    }
    m_undo.clear();
    m_undoBytes->clear();
    m_open = true;
    return true;
}

void dbDatabase::close()
{
    if (!m_open) {
        return;
    }
    int& mode = threadMode();
    if (mode != Exclusive) {
        releaseLock(mode);
        m_lock.lock();
        mode = Exclusive;
    }
    m_open = false;
    m_tables.clear();
    m_undo.clear();
    m_undoBytes->clear();
    releaseLock(mode);
}

dbDatabase::Table* dbDatabase::table(const dbTableDescriptor& d) const
{
    if (d.m_tableNo < 0 || static_cast<std::size_t>(d.m_tableNo) >= m_tables.size()) {
        return nullptr;
    }
    return m_tables[d.m_tableNo].get();
}

int& dbDatabase::threadMode()
{
    for (ThreadHold& h : t_holds) {
        if (h.serial == m_serial) {
            return h.mode;
        }
    }
    t_holds.push_back(ThreadHold{m_serial, None});
    return t_holds.back().mode;
}

bool dbDatabase::beginRead()
{
    if (!m_open) {
        handleError(dbDatabaseOpenError, "the real-time database is not open");
        return false;
    }
    int& mode = threadMode();
    if (mode == None) {
        m_lock.lock_shared();
        ++m_holders;
        mode = Shared;
    }
    return m_open;
}

bool dbDatabase::beginWrite()
{
    if (!m_open) {
        handleError(dbDatabaseOpenError, "the real-time database is not open");
        return false;
    }
    int& mode = threadMode();
    if (mode == Exclusive) {
        return true;
    }
    if (mode == Shared) {
        m_lock.unlock_shared();
        --m_holders;
    }
    m_lock.lock();
    ++m_holders;
    mode = Exclusive;
    if (!m_open) { // closed while this thread waited
        releaseLock(mode);
        handleError(dbDatabaseOpenError, "the real-time database is not open");
        return false;
    }
    return true;
}

void dbDatabase::releaseLock(int& mode)
{
    if (mode == Shared) {
        m_lock.unlock_shared();
        --m_holders;
    } else if (mode == Exclusive) {
        m_lock.unlock();
        --m_holders;
    }
    mode = None;
}

void dbDatabase::finishCommit()
{
    m_undo.clear();
    m_undoBytes->clear();
    if (m_undo.capacity() > (std::size_t(1) << 22)) {
        m_undo.shrink_to_fit();
    }
    ++m_transaction;
    // A table emptied for good gives its storage back; its rows are renumbered from 0.
    for (auto& t : m_tables) {
        if (t->desc && t->liveCount == 0 && !t->live.empty()) {
            t->clearStorage();
        }
    }
}

void dbDatabase::commit()
{
    int& mode = threadMode();
    if (mode == Exclusive && m_open) {
        finishCommit();
    }
    releaseLock(mode);
}

void dbDatabase::precommit()
{
    releaseLock(threadMode());
}

void dbDatabase::rollback()
{
    if (!beginWrite()) {
        return;
    }
    for (auto e = m_undo.rbegin(); e != m_undo.rend(); ++e) {
        Table& t = *m_tables[e->table];
        const std::uint32_t r = e->row;
        switch (e->kind) {
        case UndoEntry::Insert:
            t.unindexRow(r);
            t.live[r] = 0;
            --t.liveCount;
            if (r + 1 == t.count()) { // undoing in reverse: the newest row is last
                t.live.pop_back();
                t.stamp.pop_back();
                t.rows.resize(t.rows.size() - t.stride);
            }
            break;
        case UndoEntry::Update: {
            const char* old = m_undoBytes->at(e->bytes);
            bool changed[kMaxIndexes];
            for (std::size_t i = 0; i < t.indexes.size(); ++i) {
                Table::Index& x = t.indexes[i];
                changed[i] = compareRows(t.row(r), old, *x.field) != 0;
                if (changed[i]) {
                    t.unindexField(x, hashField(t.row(r), *x.field), r);
                }
            }
            std::memcpy(t.row(r), old, t.stride);
            for (std::size_t i = 0; i < t.indexes.size(); ++i) {
                if (changed[i]) {
                    t.indexField(t.indexes[i], r);
                }
            }
            break;
        }
        case UndoEntry::Remove:
            t.live[r] = 1;
            ++t.liveCount;
            t.indexRow(r);
            break;
        }
    }
    m_undo.clear();
    m_undoBytes->clear();
    ++m_transaction;
    releaseLock(threadMode());
}

std::uint32_t dbDatabase::insertRow(Table& t, const char* record)
{
    const std::uint32_t r = t.count();
    t.rows.resize(t.rows.size() + t.stride);
    char* dst = t.row(r);
    std::memcpy(dst, record, t.stride);
    t.storeTexts(dst, nullptr);
    t.live.push_back(1);
    t.stamp.push_back(m_transaction); // a row born in this transaction needs no update undo
    ++t.liveCount;
    t.indexRow(r);
    m_undo.push_back(
        UndoEntry{UndoEntry::Insert, static_cast<std::uint32_t>(t.desc->m_tableNo), r, 0});
    return r;
}

void dbDatabase::updateRow(Table& t, std::uint32_t r, const char* record)
{
    char* dst = t.row(r);
    // The row as the update leaves it, made beside the row first: a text equal to the one
    // the row holds keeps the row's copy, a new one is copied into the table.
    thread_local std::vector<char> image;
    image.assign(record, record + t.stride);
    const std::size_t nText = t.textFields.size();
    for (std::size_t i = 0; i < nText; ++i) {
        const dbFieldDescriptor& f = *t.textFields[i];
        const char* s = fieldAt<const char*>(record, f);
        const char* old = textAt(dst, f);
        const char* kept;
        if (!s || !*s) {
            kept = kEmptyText;
        } else if (s == old || std::strcmp(s, old) == 0) {
            kept = old;
        } else {
            kept = t.texts.store(s, std::strlen(s));
        }
        std::memcpy(image.data() + f.offset, &kept, sizeof kept);
    }
    // An update that changes nothing writes nothing: no undo, no index work.
    if (std::memcmp(image.data(), dst, t.stride) == 0) {
        return;
    }
    if (t.stamp[r] != m_transaction) {
        const std::size_t at = m_undoBytes->add(dst, t.stride);
        m_undo.push_back(
            UndoEntry{UndoEntry::Update, static_cast<std::uint32_t>(t.desc->m_tableNo), r, at});
        t.stamp[r] = m_transaction;
    }
    // A key that changes leaves its index entry for the new one.
    const std::size_t nIdx = t.indexes.size();
    bool moved[kMaxIndexes];
    for (std::size_t i = 0; i < nIdx; ++i) {
        Table::Index& x = t.indexes[i];
        const dbFieldDescriptor& f = *x.field;
        moved[i] = std::memcmp(image.data() + f.offset, dst + f.offset, fieldSize(f)) != 0 &&
                   compareRows(image.data(), dst, f) != 0;
        if (moved[i]) {
            t.unindexField(x, hashField(dst, f), r);
        }
    }
    std::memcpy(dst, image.data(), t.stride);
    for (std::size_t i = 0; i < nIdx; ++i) {
        if (moved[i]) {
            t.indexField(t.indexes[i], r);
        }
    }
}

void dbDatabase::removeAllRows(Table& t)
{
    const std::uint32_t n = t.count();
    m_undo.reserve(m_undo.size() + t.liveCount);
    for (std::uint32_t r = 0; r < n; ++r) {
        if (t.live[r]) {
            t.live[r] = 0;
            m_undo.push_back(
                UndoEntry{UndoEntry::Remove, static_cast<std::uint32_t>(t.desc->m_tableNo), r, 0});
        }
    }
    t.liveCount = 0;
    for (Table::Index& i : t.indexes) {
        i.index.clear(); // every entry goes; a rollback indexes the rows again
    }
}

bool dbDatabase::insertRecord(dbTableDescriptor* desc, dbAnyReference* ref, const void* record)
{
    if (!desc || !record) {
        handleError(dbNullReferenceError, "insert of no record");
        return false;
    }
    if (!beginWrite()) {
        return false;
    }
    Table* t = table(*desc);
    if (!t || !t->desc) {
        handleError(dbQueryError, "insert into a table this database does not have");
        return false;
    }
    std::uint32_t r = insertRow(*t, static_cast<const char*>(record));
    if (ref) {
        *ref = dbAnyReference(desc, r);
    }
    return true;
}

bool dbDatabase::selectRows(const dbTableDescriptor& d, const dbQuery* query, dbRowList& rows)
{
    rows.clear();
    if (!beginRead()) {
        return false;
    }
    const Table* t = table(d);
    if (!t || !t->desc) {
        handleError(dbQueryError, "select from a table this database does not have");
        return false;
    }
    static const dbQuery::Compiled all; // no condition, no order
    const dbQuery::Compiled* q = &all;
    if (query) {
        std::string error;
        q = query->compileShape(d, error);
        if (!q) {
            handleError(dbQueryError, error.c_str());
            return false;
        }
    }
    // Scratch space kept per thread: a keyed select then allocates nothing here.
    thread_local std::vector<dbQuery::Value> values;
    values.clear();
    for (const dbQuery::Condition& c : q->conditions) {
        values.push_back(
            c.param >= 0
                ? query->param(static_cast<std::size_t>(c.param)).resolve(query->paramTexts())
                : c.literal.resolve(q->literals.data()));
    }
    // Every condition but `skip` holds for the row.
    auto matches = [&](std::uint32_t r, std::size_t skip) {
        const char* row = t->row(r);
        for (std::size_t i = 0; i < q->conditions.size(); ++i) {
            if (i != skip && !holds(compareField(row, *q->conditions[i].field, values[i]),
                                    q->conditions[i].op)) {
                return false;
            }
        }
        return true;
    };
    // An equality on an indexed field gives the candidates; otherwise every row is one.
    const HashIndex* index = nullptr;
    const dbQuery::Condition* keyCondition = nullptr;
    std::size_t keyAt = 0;
    std::uint32_t hash = 0;
    // Of several, the index of the most distinct keys: "type=3 and id=..." goes by the id.
    for (std::size_t i = 0; i < q->conditions.size(); ++i) {
        const dbQuery::Condition& c = q->conditions[i];
        std::uint32_t h = 0;
        if (c.op == dbQuery::Eq && c.field->hashed && valueHash(*c.field, values[i], h)) {
            const HashIndex* candidate = t->indexOf(c.field);
            if (candidate && (!index || candidate->keys() > index->keys())) {
                index = candidate;
                keyCondition = &c;
                keyAt = i;
                hash = h;
            }
        }
    }
    if (index) {
        // The rows of the key's chain all hold the key: its condition is settled.
        const bool whole = index->find(
            hash,
            [&](std::uint64_t key) { return keyEquals(*keyCondition->field, key, values[keyAt]); },
            [&](std::uint32_t r) {
                if (t->live[r] && matches(r, keyAt)) {
                    rows.push_back(r);
                }
            },
            [&](std::uint32_t r) {
                const char* p = t->row(r);
                for (std::size_t at = 0; at < t->stride; at += 64) {
                    __builtin_prefetch(p + at);
                }
            });
        if (!whole) {
            rows.clear();
            handleError(dbQueryError, "an index of the table is damaged (one of its key chains "
                                      "runs in a circle): the selection is refused");
            return false;
        }
        if (rows.size() > 1) {
            std::sort(rows.begin(), rows.end());
        }
    } else {
        rows.reserve(q->conditions.empty() ? t->liveCount : 0);
        const std::uint32_t n = t->count();
        const std::size_t none = q->conditions.size();
        for (std::uint32_t r = 0; r < n; ++r) {
            if (t->live[r] && matches(r, none)) {
                rows.push_back(r);
            }
        }
    }
    if (!q->order.empty()) {
        std::stable_sort(rows.begin(), rows.end(), [&](std::uint32_t a, std::uint32_t b) {
            for (const dbQuery::Order& o : q->order) {
                int c = compareRows(t->row(a), t->row(b), *o.field);
                if (c != 0) {
                    return o.descending ? c > 0 : c < 0;
                }
            }
            return false;
        });
    }
    return true;
}

const char* dbDatabase::rowData(const dbTableDescriptor& d, std::uint32_t row) const
{
    const Table* t = table(d);
    return t && row < t->count() ? t->row(row) : nullptr;
}

bool dbDatabase::rowLive(const dbTableDescriptor& d, std::uint32_t row) const
{
    const Table* t = table(d);
    return t && row < t->count() && t->live[row];
}

dbErrorHandler dbDatabase::setErrorHandler(dbErrorHandler handler, void* context)
{
    dbErrorHandler previous = m_handler;
    m_handler = handler;
    m_handlerContext = context;
    return previous;
}

void dbDatabase::handleError(dbErrorClass error, const char* msg, int arg)
{
    m_lastError = error;
    m_lastMessage = msg ? msg : "";
    if (m_handler) {
        m_handler(error, msg, arg, m_handlerContext);
    } else {
        std::fprintf(stderr, "rtdb %s: %s\n", m_name.c_str(), msg ? msg : "error");
    }
}

void dbDatabase::reportWithoutDatabase(const char* msg)
{
    std::fprintf(stderr, "rtdb: %s\n", msg);
}

std::size_t dbDatabase::recordCount(const dbTableDescriptor& d) const
{
    const Table* t = table(d);
    return t ? t->liveCount : 0;
}

std::size_t dbDatabase::storageBytes(const dbTableDescriptor& d) const
{
    const Table* t = table(d);
    if (!t) {
        return 0;
    }
    return t->rows.capacity() + t->live.capacity() + t->stamp.capacity() * sizeof(std::uint32_t) +
           t->texts.allocated();
}

std::size_t dbDatabase::indexBytes(const dbTableDescriptor& d) const
{
    const Table* t = table(d);
    std::size_t n = 0;
    if (t) {
        for (const Table::Index& i : t->indexes) {
            n += i.index.bytes();
        }
    }
    return n;
}
