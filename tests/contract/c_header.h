/* What the C header says of one constant, type, record or field, for the comparison with what C++ says. Read by both languages. */
#pragma once

struct HeaderFact
{
    const char *name;
    long long value; /* of a constant; the offset of a field; the alignment of a record */
    int size;
    int isSigned; /* of a constant */
};

#ifdef __cplusplus
extern "C"
#else
extern
#endif
    const struct HeaderFact factsInC[];
