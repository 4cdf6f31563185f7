// Sidecars that come along: when a file is made, moved, renamed or removed, its sidecar follows.
#pragma once

#include "standin/files/references.h"
#include "standin/files/sidecar_store.h"

namespace standin
{

// A file gets a name: a leftover sidecar of that name is removed, an orphan is moved aside to a free visible name.
OSErr clearTheWayFor(int folder, const std::string &name);

// The sidecar is given the file's new name, beside its old one: by a link, or where that cannot be by a copy.
// `carried` says whether there was one. The old name goes only when the file has its new one.
OSErr carrySidecar(const SidecarPlace &from, const SidecarPlace &to, bool &carried);

// Gives an object another name, in its folder or another one, with its sidecar. Both names' locks are held, and nothing has the new sidecar's name.
// Result: noErr; dupFNErr if the name is taken; errFSNameTooLong if there is a sidecar and the name leaves no room for one; the disk's code.
OSErr renameWithSidecar(const Object &object, int folder, const std::string &name);

// Removes the sidecar of a file that is gone or has gone. What is no sidecar stays.
void removeSidecar(const SidecarPlace &place);

// Removes the sidecar as a name only, because its other link is the one that counts.
void dropSidecarName(const SidecarPlace &place);

}   // namespace standin
