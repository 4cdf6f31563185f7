#include "standin/files/file_id_store.h"

#include "standin/files/file_id_database.h"

namespace standin
{

namespace
{

constexpr UInt32 firstID = 16, lastFirstID = 0x3FFFFFFF;
constexpr std::size_t deepestFolder = 100000;

// A well-known hash (FNV-1a, 64 bits).
class CheckSum
{
public:
    CheckSum &add(std::string_view bytes)
    {
        for (const char c : bytes)
            sum_ = (sum_ ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
        return *this;
    }
    CheckSum &add(std::uint64_t value)
    {
        for (int i = 0; i < 8; ++i, value >>= 8)
            sum_ = (sum_ ^ (value & 0xFF)) * 0x100000001B3u;
        return *this;
    }
    CheckSum &add(const Identity &identity) { return add(identity.device).add(identity.inode).add(identity.birth); }
    std::uint64_t value() const { return sum_; }

private:
    std::uint64_t sum_ = 0xCBF29CE484222325u;
};

std::uint64_t sumOf(RowNumber volume, const StoredFile &file)
{
    CheckSum sum;
    sum.add(static_cast<std::uint64_t>(volume)).add(file.id).add(static_cast<std::uint64_t>(file.folder)).add(file.identity).add(file.name);
    return sum.value();
}

std::uint64_t sumOf(RowNumber volume, const StoredFolder &folder)
{
    CheckSum sum;
    sum.add(static_cast<std::uint64_t>(volume))
        .add(static_cast<std::uint64_t>(folder.number))
        .add(static_cast<std::uint64_t>(folder.parent));
    return sum.add(folder.identity).add(folder.name).value();
}

Identity identityAt(const DatabaseQuery &row, int column)
{
    return {row.unsignedNumber(column), row.unsignedNumber(column + 1), row.unsignedNumber(column + 2)};
}

bool mayBeName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

OSErr takeFile(const DatabaseQuery &row, RowNumber volume, StoredFile &file)
{
    file.id = static_cast<UInt32>(row.number(0));
    file.folder = row.number(1);
    file.name = row.bytes(2);
    file.identity = identityAt(row, 3);
    return row.unsignedNumber(6) == sumOf(volume, file) && mayBeName(file.name) ? noErr : ioErr;
}

OSErr takeFolder(const DatabaseQuery &row, RowNumber volume, StoredFolder &folder)
{
    folder.number = row.number(0);
    folder.parent = row.number(1);
    folder.name = row.bytes(2);
    folder.identity = identityAt(row, 3);
    return row.unsignedNumber(6) == sumOf(volume, folder) && mayBeName(folder.name) ? noErr : ioErr;
}

OSErr takeFiles(DatabaseQuery &query, RowNumber volume, std::vector<StoredFile> &files)
{
    files.clear();
    while (query.next())
        if (OSErr result = takeFile(query, volume, files.emplace_back()))
            return result;
    return query.result();
}

OSErr resultOfOneRow(const DatabaseQuery &query)
{
    return query.result() == noErr ? static_cast<OSErr>(fidNotFound) : query.result();
}

// One more than the largest. The first one is drawn by lot: after a database was lost, the IDs of the old one name nothing in the new one.
OSErr nextID(RowNumber volume, UInt32 &id)
{
    DatabaseQuery query("SELECT max(id) FROM files WHERE volume = ?");
    const std::int64_t largest = query.with(volume).next() ? query.number(0) : 0;
    if (query.result() != noErr)
        return query.result();
    if (largest < 0 || largest >= 0xFFFFFFFF)
        return dskFulErr;
    id = largest ? static_cast<UInt32>(largest + 1) : firstID + randomNumber() % (lastFirstID - firstID);
    return noErr;
}

}   // namespace

OSErr findVolumeRow(const std::string &identity, RowNumber &volume)
{
    DatabaseQuery query("SELECT number FROM volumes WHERE identity = CAST(? AS TEXT)");
    if (!query.withBytes(identity).next())
        return resultOfOneRow(query);
    volume = query.number(0);
    return noErr;
}

OSErr findOrAddVolumeRow(const std::string &identity, RowNumber &volume)
{
    const OSErr found = findVolumeRow(identity, volume);
    if (found != fidNotFound)
        return found;
    DatabaseQuery query("INSERT INTO volumes (identity) VALUES (CAST(? AS TEXT)) RETURNING number");
    query.withBytes(identity).next();
    volume = query.result() == noErr ? query.number(0) : 0;
    return query.run();
}

OSErr findFileRow(RowNumber volume, UInt32 id, StoredFile &file)
{
    DatabaseQuery query("SELECT id, folder, name, device, inode, birth, sum FROM files WHERE volume = ? AND id = ?");
    if (!query.with(volume).with(std::int64_t{id}).next())
        return resultOfOneRow(query);
    if (OSErr result = takeFile(query, volume, file))
        return result;
    return file.id == id ? noErr : ioErr;
}

OSErr findFileRowsByIdentity(RowNumber volume, const Identity &identity, std::vector<StoredFile> &files)
{
    DatabaseQuery query(
        "SELECT id, folder, name, device, inode, birth, sum FROM files WHERE inode = ? AND device = ? AND volume = ? ORDER BY id");
    return takeFiles(query.with(identity.inode).with(identity.device).with(volume), volume, files);
}

OSErr findFileRowsByPlace(RowNumber volume, RowNumber folder, const std::string &name, std::vector<StoredFile> &files)
{
    DatabaseQuery query(
        "SELECT id, folder, name, device, inode, birth, sum FROM files WHERE folder = ? AND name = ? AND volume = ? ORDER BY id");
    return takeFiles(query.with(folder).withBytes(name).with(volume), volume, files);
}

OSErr addFileRow(RowNumber volume, StoredFile &file)
{
    if (OSErr result = nextID(volume, file.id))
        return result;
    DatabaseQuery query("INSERT INTO files (volume, id, folder, name, device, inode, birth, sum) VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    query.with(volume).with(std::int64_t{file.id}).with(file.folder).withBytes(file.name);
    return query.with(file.identity.device).with(file.identity.inode).with(file.identity.birth).with(sumOf(volume, file)).run();
}

OSErr changeFileRow(RowNumber volume, const StoredFile &file)
{
    DatabaseQuery query("UPDATE files SET folder = ?, name = ?, device = ?, inode = ?, birth = ?, sum = ? WHERE volume = ? AND id = ?");
    query.with(file.folder).withBytes(file.name).with(file.identity.device).with(file.identity.inode).with(file.identity.birth);
    return query.with(sumOf(volume, file)).with(volume).with(std::int64_t{file.id}).run();
}

OSErr findFolderRows(RowNumber volume, RowNumber folder, std::vector<StoredFolder> &way)
{
    way.clear();
    for (; folder != rootRow; folder = way.back().parent)
    {
        DatabaseQuery query("SELECT number, parent, name, device, inode, birth, sum FROM folders WHERE number = ? AND volume = ?");
        if (way.size() == deepestFolder)
            return ioErr;   // it goes round in a circle
        if (!query.with(folder).with(volume).next())
            return query.result() == noErr ? static_cast<OSErr>(ioErr) : query.result();
        if (OSErr result = takeFolder(query, volume, way.emplace_back()))
            return result;
        if (way.back().number != folder)
            return ioErr;
    }
    return way = {way.rbegin(), way.rend()}, static_cast<OSErr>(noErr);
}

OSErr findFolderRow(RowNumber volume, const Identity &identity, StoredFolder &folder)
{
    DatabaseQuery query(
        "SELECT number, parent, name, device, inode, birth, sum FROM folders WHERE inode = ? AND device = ? AND volume = ?");
    query.with(identity.inode).with(identity.device).with(volume);
    while (query.next())
    {
        if (OSErr result = takeFolder(query, volume, folder))
            return result;
        if (sameObject(folder.identity, identity))
            return noErr;
    }
    return resultOfOneRow(query);
}

OSErr addFolderRow(RowNumber volume, StoredFolder &folder)
{
    DatabaseQuery numbers("SELECT coalesce(max(number), 0) + 1 FROM folders");
    if (!numbers.next())
        return numbers.result();
    folder.number = numbers.number(0);
    DatabaseQuery query("INSERT INTO folders (volume, number, parent, name, device, inode, birth, sum) VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    query.with(volume).with(folder.number).with(folder.parent).withBytes(folder.name);
    return query.with(folder.identity.device).with(folder.identity.inode).with(folder.identity.birth).with(sumOf(volume, folder)).run();
}

OSErr changeFolderRow(RowNumber volume, const StoredFolder &folder)
{
    DatabaseQuery query("UPDATE folders SET parent = ?, name = ?, sum = ? WHERE number = ?");
    return query.with(folder.parent).withBytes(folder.name).with(sumOf(volume, folder)).with(folder.number).run();
}

}   // namespace standin
