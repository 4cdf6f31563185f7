// Catalogue records: what Linux and the metadata know of an object ↔ FSCatalogInfo, field by field.
#pragma once

#include "platform/platform.h"
#include "standin/files/references.h"

namespace standin
{

constexpr FSCatalogInfoBitmap everyCatalogBit = 0x0003FFFF;

// Fills the fields asked for and no others.
OSErr fillCatalogInfo(const Object &object, FSCatalogInfoBitmap which, FSCatalogInfo &info);

// Checks a bitmap of fields to be set, and that there is a record to take them from.
OSErr checkSettable(FSCatalogInfoBitmap which, const FSCatalogInfo *info);

// Sets the fields. With the parent folder's lock held; locks of volume and object were not looked at yet.
OSErr applyCatalogInfo(const Object &object, FSCatalogInfoBitmap which, const FSCatalogInfo &info);

// The names of an object.
void fillName(const Object &object, HFSUniStr255 &name);
void fillSpec(const Object &object, FSSpec &spec);

}   // namespace standin
