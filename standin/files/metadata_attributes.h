// The attributes of an object, as they are read for its metadata; metadata.h says what counts.
#pragma once

#include "standin/files/attribute_format.h"
#include "standin/files/exchange_journal.h"
#include "standin/files/references.h"

namespace standin
{

struct Attributes
{
    bool possible = true;
    int failure = 0;   // the errno of what could not be read: it must not be written over
    std::optional<SharedAttribute> shared;
    std::optional<OwnRecord> own;
    bool hasShared = false, hasOwn = false;   // the object itself has such an attribute, whatever it says

    // An exchange of this file was cut off. Where the file has come to its new place, the attributes above are those that the place has.
    std::optional<ExchangeJournal> journal;
};

// Whether an object can have any.
bool mayHaveAttributes(const Object &object);

// One call tells which there are. What may not be read counts as not there. `ownIsWanted` is false where the shared one alone may do.
Attributes readAttributes(const Object &object, bool ownIsWanted);

// Where a file stands whose exchange was cut off.
enum class ExchangeStage
{
    notBegun,    // at its old place
    parked,      // under a temporary name beside its old place
    arrived,     // at its new place
    elsewhere,   // another program has renamed it since
};
ExchangeStage stageOf(const Object &object, const ExchangeJournal &journal);

// The temporary name of a file that makes room for another one; `number` from 1. It leaves room for a sidecar.
std::string parkedNameOf(const std::string &name, int number);
bool looksParked(std::string_view name);

}   // namespace standin
