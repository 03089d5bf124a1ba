// The real-time query parser: a dbQuery built from any text pieces and parameters of
// every kind, then a select on a small table of AC-line records. The select either
// reports an error or gives records of that table; the same query run again (its parsed
// shape now remembered by this thread) gives the same records; an update of a selected
// record and one that changes nothing are undone by the rollback that ends each input.

#include "FuzzCheck.h"
#include "records/NetworkRecords.h"

#include <cstdint>
#include <functional>
#include <fuzzer/FuzzedDataProvider.h>
#include <set>
#include <string>
#include <vector>

using namespace dtsdb;

namespace {

void quiet(int, const char*, int, void*) {}

dbDatabase& database()
{
    static dbDatabase* db = [] {
        auto* d = new dbDatabase;
        d->setErrorHandler(&quiet);
        FuzzCheck(d->open("fuzz"), "the database does not open");
        const char* ids[] = {"L1_ac", "O'Brien_ac", "a\\b_sc", "线路一_ac", "", "L10_ac"};
        int k = 0;
        for (const char* id : ids) {
            ln r{};
            r.id = id;
            r.I_Name = k % 2 ? "N1" : "N2";
            r.J_Name = "N3";
            r.lntype = 1 + k % 3;
            r.ibs = k;
            r.R1 = 0.25f * float(k);
            r.q = unsigned(k);
            FuzzCheck(d->insertRecord(&ln::dbDescriptor, nullptr, &r), "an insert failed");
            ++k;
        }
        d->commit();
        return d;
    }();
    return *db;
}

// The ids a query selects, in cursor order; `count` is what select returned.
std::vector<std::string> ids(dbQuery& q, int& count)
{
    std::vector<std::string> out;
    dbCursor<ln> c(dbCursorViewOnly);
    count = c.select(q);
    if (count > 0) {
        do {
            out.push_back(c->id ? c->id : "");
        } while (c.next());
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    dbDatabase& db = database();
    FuzzedDataProvider in(data, size);
    // Parameters read through pointers must outlive the query.
    int iv = in.ConsumeIntegral<int>();
    unsigned uv = in.ConsumeIntegral<unsigned>();
    float fv = in.ConsumeFloatingPoint<float>();
    double dv = in.ConsumeFloatingPoint<double>();
    std::string sv = in.ConsumeRandomLengthString(24);
    const char* sp = sv.c_str();
    std::vector<std::string> texts; // the bytes of text pieces and text parameters
    texts.reserve(32);

    dbQuery q;
    texts.push_back(in.ConsumeRandomLengthString(48));
    q = texts.back().c_str();
    const std::function<void()> parameter[] = {
        [&] { q, in.ConsumeIntegral<int>(); },
        [&] { q, in.ConsumeIntegral<unsigned>(); },
        [&] { q, in.ConsumeIntegral<long long>(); },
        [&] { q, in.ConsumeFloatingPoint<float>(); },
        [&] { q, in.ConsumeFloatingPoint<double>(); },
        [&] {
            texts.push_back(in.ConsumeRandomLengthString(24));
            q, texts.back().c_str();
        },
        [&] { q, &iv; },
        [&] { q, &uv; },
        [&] { q, &fv; },
        [&] { q, &dv; },
        [&] { q, &sp; }};
    for (int item = 0; item < 8 && in.remaining_bytes() > 0; ++item) {
        parameter[in.ConsumeIntegralInRange<int>(0, 10)]();
        // Text again after the parameter (an empty piece is allowed).
        texts.push_back(in.ConsumeRandomLengthString(48));
        q, texts.back().c_str();
    }
    (void)q.describe();

    int first = 0, second = 0;
    const std::vector<std::string> a = ids(q, first);
    const std::vector<std::string> b = ids(q, second);
    FuzzCheck(first == second && a == b, "the same query selected differently the second time");
    FuzzCheck(first <= 6 && int(a.size()) == (first > 0 ? first : 0), "count and records differ");
    std::set<std::string> known = {"L1_ac", "O'Brien_ac", "a\\b_sc", "线路一_ac", "", "L10_ac"};
    for (const std::string& id : a) {
        FuzzCheck(known.count(id) == 1, "a record that was never inserted");
    }
    if (first > 0) {
        dbCursor<ln> c(dbCursorForUpdate);
        if (c.select(q) > 0) {
            c.update(); // changes nothing
            c->R1 = fv;
            c.update(); // changes the row, kept for the rollback
        }
    }
    db.rollback();
    int after = 0;
    dbQuery all("order by id");
    FuzzCheck(ids(all, after).size() == 6 && after == 6, "the rollback lost a record");
    return 0;
}
