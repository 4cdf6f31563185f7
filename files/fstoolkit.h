// The File Manager toolkit: ready-made services over the File Manager's object references.
//
// Every function is stateless and works on its arguments alone. What holds for all of them:
//
// - An FSRef argument that is read must point to a valid 80-byte reference; whether it still names an object is for the
//   File Manager to say, and its code (fnfErr, errFSBadFSRef, nsvErr, ...) is returned unchanged.
// - A required output that is null gives paramErr before anything else is done. An optional one that is null is neither
//   asked for nor written.
// - Outputs are written only on success, unless a function says otherwise. Those that the File Manager fills itself hold
//   after a failure whatever it left there.
// - The first failing call ends the operation, and its code is the result; where a failure is ignored on purpose, the
//   function says so.
// - Booleans are bytes: 0 is false and anything else is true. Boolean outputs are exactly 0 or 1.
// - Functions may be called from any thread from which the File Manager may be called.

#pragma once

#include "files/catalog.h"      // catalog and Finder information
#include "files/volumes.h"      // volumes and mounting
#include "files/names.h"        // names and paths
#include "files/forks.h"        // fork sizes and copying
#include "files/containers.h"   // walking, listing and deleting
#include "files/moves.h"        // moving, renaming and exchanging
#include "files/access.h"       // access privileges, file IDs and the default directory
