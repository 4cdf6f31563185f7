// Metadata in sidecars: what is written there; metadata.h says when.
#pragma once

#include "standin/files/metadata.h"
#include "standin/files/sidecar_store.h"

namespace standin
{

SidecarPlace sidecarPlace(const Object &object);

// The four dates of entry 8, of a sidecar and of the shared attribute alike; `access` is the one that is there.
SidecarDates mirroredDates(const Object &object, const OwnRecord &own, std::int32_t access);

// Where the sidecar is the only place. Entries come into being as they are needed: Finder information alone has the form that everybody opens.
OSErr writeToSidecarAlone(const Object &object, unsigned parts, const Metadata &present, const Metadata &wanted);

// Other programs' copies in a sidecar that is there anyway; and a sidecar for what is locked, so that a folder's listing alone tells what may be locked.
OSErr bringSidecarInLine(const Object &object, unsigned parts, const Metadata &wanted, bool &isThere);

}   // namespace standin
