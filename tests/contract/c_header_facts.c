/* The facts as a C compiler sees them. */
#include "files/fstoolkit_c.h"

#include "tests/contract/c_header.h"

#include <stddef.h>

#define IS_SIGNED(value) _Generic((value), signed char : 1, short : 1, int : 1, long : 1, long long : 1, default : 0)

/* Constants are good for first values, as here. */
#define CONSTANT(name) {#name, (long long)(name), (int)sizeof(name), IS_SIGNED(name)},
#define TYPE(name) {#name, 0, (int)sizeof(name), 0},
#define RECORD(name) {#name, (long long)_Alignof(name), (int)sizeof(name), 0},
#define FIELD(record, name) {#record "." #name, (long long)offsetof(record, name), (int)sizeof(((record *)0)->name), 0},

const struct HeaderFact factsInC[] = {
#include "files/fstoolkit_c_rows.h"
    {0, 0, 0, 0}};
