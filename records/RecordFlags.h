#pragma once
// Bits of the flag words `q` and `topflags` of the network records. Each element family
// has its own values; they differ on purpose and the label code tests them too, so one
// family's constant must never stand in for another's.

namespace dtsdb {

// `q`: the in-job bit (a job row reached the record) and the out-of-service bit.
enum NdFlags : unsigned int { ND_INJOB = 256, ND_OUTSERVICE = 128 };
enum LnFlags : unsigned int {
    LN_INJOB = 16,
    LN_OUTSERVICE = 4,
    LN_IOPEN = 1, // I end open: I_Break is 0
    LN_JOPEN = 2, // J end open: J_Break is 0
};
// The out-of-service bit of a shunt also stands for an open I end.
enum CpFlags : unsigned int { CP_INJOB = 8, CP_OUTSERVICE = 1 };
enum XfFlags : unsigned int { XF_INJOB = 16, XF_OUTSERVICE = 1 };
enum DlnFlags : unsigned int { DLN_INJOB = 16, DLN_OUTSERVICE = 4 };
enum UnFlags : unsigned int { UN_INJOB = 8, UN_OUTSERVICE = 1 };
enum LdFlags : unsigned int { LD_INJOB = 8, LD_OUTSERVICE = 1 };
enum CbFlags : unsigned int {
    CB_INJOB = 4096,
    CB_OUTSERVICE = 2048,
    CB_OPEN = 256, // Lbreak is 0
    CB_TESTED = 1, // looked at before a result row is written; set outside this library
};
// The SVC's bit is set when it is out of service: Valid 1 clears it, any other value sets it.
enum SvcFlags : unsigned int { SVC_OUTSERVICE = 2 };

// `topflags`: the bit set by a forced invalidation, and the bit that marks a dead element
// whose results are not written.
enum TopFlags : unsigned int {
    LN_TOP_INVALID = 4, // ln, xf, dln: set and tested
    XF_TOP_INVALID = 4,
    DLN_TOP_INVALID = 4,
    CP_TOP_INVALID = 1, // cp, un, ld: set and tested
    UN_TOP_INVALID = 1,
    LD_TOP_INVALID = 1,
    BUS_TOP_DEAD = 1,   // bus: tested only
    CB_TOP_INVALID = 4, // cb: the bit set ...
    CB_TOP_DEAD = 2048, // ... is not the bit tested
};

} // namespace dtsdb
