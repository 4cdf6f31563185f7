/* What the catalogue knows of files and folders, for programs in C: name, type, creator, sizes.
 *
 *     catalog PATH...
 */
#include "files/fstoolkit_c.h"

#include <stdio.h>
#include <string.h>

/* A type or creator as four characters; a '.' where one cannot be shown. */
static void showCode(OSType code)
{
    for (int shift = 24; shift >= 0; shift -= 8)
    {
        const unsigned char character = (unsigned char)(code >> shift);
        putchar(character >= ' ' && character <= '~' ? character : '.');
    }
}

static OSErr showFile(const FSRef *ref)
{
    FinderInfo finder;
    UInt64 data = 0, resources = 0;
    OSErr result = FSGetFinderInfo(ref, &finder, NULL, NULL);
    if (result == noErr)
        result = FSGetForkSizes(ref, &data, &resources);
    if (result != noErr)
        return result;
    showCode(finder.file.fileType);
    putchar(' ');
    showCode(finder.file.fileCreator);
    printf("  %llu + %llu bytes\n", data, resources);
    return noErr;
}

static OSErr show(const char *path)
{
    FSRef ref;
    Boolean isFolder = 0;
    OSStatus result = FSPathMakeRef((const UInt8 *)path, &ref, &isFolder);
    if (result != noErr)
        return (OSErr)result;
    printf("%s  ", path);
    if (isFolder)
        return puts("folder"), noErr;
    return showFile(&ref);
}

int main(int argumentCount, char **arguments)
{
    int failures = 0;
    for (int at = 1; at < argumentCount; ++at)
    {
        const OSErr result = show(arguments[at]);
        if (result != noErr)
        {
            fprintf(stderr, "%s: %s (%d)\n", arguments[at], result == fnfErr ? "not found" : "failed", result);
            ++failures;
        }
    }
    return failures == 0 && argumentCount > 1 ? 0 : 1;
}
