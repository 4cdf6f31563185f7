// The toolkit's header for C programs says the same as the headers that it is made from: every constant's value and type, every record's layout.
#include "files/fstoolkit.h"

#include "tests/contract/c_header.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

namespace
{

template <typename Constant>
int isSigned(Constant)
{
    if constexpr (std::is_enum_v<Constant>)
        return std::is_signed_v<std::underlying_type_t<Constant>>;
    else
        return std::is_signed_v<Constant>;
}

#define CONSTANT(name) {#name, static_cast<long long>(name), static_cast<int>(sizeof(name)), isSigned(name)},
#define TYPE(name) {#name, 0, static_cast<int>(sizeof(name)), 0},
#define RECORD(name) {#name, static_cast<long long>(alignof(name)), static_cast<int>(sizeof(name)), 0},
#define FIELD(record, name) {#record "." #name, static_cast<long long>(offsetof(record, name)), static_cast<int>(sizeof(record::name)), 0},

const HeaderFact factsInCpp[] = {
#include "files/fstoolkit_c_rows.h"
};

TEST(CHeader, SaysOfEveryConstantTypeRecordAndFieldWhatItsSourcesSay)
{
    const HeaderFact *inC = factsInC;
    for (const HeaderFact &fact : factsInCpp)
    {
        ASSERT_NE(inC->name, nullptr) << fact.name;
        EXPECT_STREQ(inC->name, fact.name);
        EXPECT_EQ(inC->value, fact.value) << fact.name;
        EXPECT_EQ(inC->size, fact.size) << fact.name;
        EXPECT_EQ(inC->isSigned, fact.isSigned) << fact.name;
        ++inC;
    }
    EXPECT_EQ(inC->name, nullptr);
}

TEST(CHeader, HasWhatTheToolkitNeeds)
{
    EXPECT_GT(std::size(factsInCpp), 500u);
}

}   // namespace
