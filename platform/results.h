// Result codes under their names. Functions report them as OSErr (16 bits) or OSStatus (32 bits); 0 is success.

#pragma once

#include "platform/types.h"

constexpr OSErr noErr = 0;

// Files and volumes
constexpr OSErr dskFulErr = -34;           // no room left on the volume
constexpr OSErr nsvErr = -35;              // no such volume
constexpr OSErr ioErr = -36;               // reading or writing failed
constexpr OSErr bdNamErr = -37;            // a name that cannot be
constexpr OSErr eofErr = -39;              // end of the fork reached
constexpr OSErr posErr = -40;              // a position before the start
constexpr OSErr tmfoErr = -42;             // too many files open
constexpr OSErr fnfErr = -43;              // no such file or folder
constexpr OSErr wPrErr = -44;              // the volume is locked by its hardware
constexpr OSErr fLckdErr = -45;            // the file is locked
constexpr OSErr vLckdErr = -46;            // the volume is locked by software
constexpr OSErr fBsyErr = -47;             // the object is in use
constexpr OSErr dupFNErr = -48;            // an object of that name exists already
constexpr OSErr opWrErr = -49;             // the fork is open for writing already
constexpr OSErr paramErr = -50;            // an argument that cannot be
constexpr OSErr rfNumErr = -51;            // no open fork has that reference number
constexpr OSErr permErr = -54;             // the volume or fork may not be written
constexpr OSErr dirNFErr = -120;           // no such directory
constexpr OSErr fidNotFound = -1300;       // no such file ID
constexpr OSErr fidExists = -1301;         // the file has an ID already
constexpr OSErr notAFileErr = -1302;       // a folder where a file was wanted
constexpr OSErr diffVolErr = -1303;        // the objects are on different volumes
constexpr OSErr afpAccessDenied = -5000;   // the user may not do this
constexpr OSErr afpIDExists = -5035;       // the file has an ID already, says a server

// Files by reference
constexpr OSErr errFSBadFSRef = -1401;
constexpr OSErr errFSBadForkName = -1402;
constexpr OSErr errFSBadBuffer = -1403;
constexpr OSErr errFSBadForkRef = -1404;
constexpr OSErr errFSBadInfoBitmap = -1405;
constexpr OSErr errFSMissingCatInfo = -1406;
constexpr OSErr errFSNotAFolder = -1407;
constexpr OSErr errFSForkNotFound = -1409;
constexpr OSErr errFSNameTooLong = -1410;
constexpr OSErr errFSMissingName = -1411;
constexpr OSErr errFSBadPosMode = -1412;
constexpr OSErr errFSBadAllocFlags = -1413;
constexpr OSErr errFSNoMoreItems = -1417;   // an iteration has come to its end
constexpr OSErr errFSBadItemCount = -1418;
constexpr OSErr errFSRefsDifferent = -1420;
constexpr OSErr errFSForkExists = -1421;
constexpr OSErr errFSBadIteratorFlags = -1422;
constexpr OSErr errFSIteratorNotFound = -1423;

// Memory and resources
constexpr OSErr memFullErr = -108;
constexpr OSErr nilHandleErr = -109;
constexpr OSErr memWZErr = -111;         // a pointer that is no block
constexpr OSErr badExtResource = -185;   // compressed, or its bytes do not lie in the file
constexpr OSErr inputOutOfBounds = -190;
constexpr OSErr resNotFound = -192;
constexpr OSErr resFNotFound = -193;
constexpr OSErr mapReadErr = -199;   // no map of resources, or a damaged one

// System
constexpr OSErr gestaltUndefSelectorErr = -5551;   // nothing here goes by that name

// Drawing
constexpr OSErr cDepthErr = -157;

// Text conversion
constexpr OSStatus kTextUnsupportedEncodingErr = -8738;
constexpr OSStatus kTextMalformedInputErr = -8739;
constexpr OSStatus kTECPartialCharErr = -8753;
constexpr OSStatus kTECUnmappableElementErr = -8754;
constexpr OSStatus kTECUsedFallbacksStatus = -8783;
constexpr OSStatus kTECOutputBufferFullStatus = -8785;
