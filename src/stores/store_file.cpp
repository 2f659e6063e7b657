#include "stores/store_file.h"

#include <cstdint>

namespace varkel {

StoreFile::StoreFile(UnitFiles& files, Log& log, const StorePlace& place, std::size_t recordBytes)
    : m_files(files),
      m_log(log),
      m_path(place.path),
      m_factoryPath(place.factoryPath),
      m_recordBytes(recordBytes),
      m_capacity(place.capacity) {}

std::string StoreFile::Load() {
    std::string bytes;
    FileRead read = m_files.Read(m_path, largestFile, bytes);
    if (read == FileRead::Missing && !m_factoryPath.empty()) {
        std::lock_guard lock(m_mutex);
        read = Read(bytes);
    }
    if (read == FileRead::Failed) LogFailure("cannot be read");
    if (read == FileRead::TooLarge) LogFailure("is too large");
    KeepWholeRecords(bytes);
    return bytes;
}

StoreResult StoreFile::Update(SpaceGuard guard, const Change& change) {
    std::lock_guard lock(m_mutex);
    const StoreResult result = UpdateLocked(guard, change);
    switch (result) {
        case StoreResult::VolumeFull: LogFailure("is not written, the volume is full"); break;
        case StoreResult::Unreadable: LogFailure("cannot be read, so it is not written"); break;
        case StoreResult::WriteFailed: LogFailure("cannot be written"); break;
        case StoreResult::Done:
        case StoreResult::NotFound: break;
    }
    return result;
}

StoreResult StoreFile::UpdateLocked(SpaceGuard guard, const Change& change) {
    if (guard == SpaceGuard::On && !HasRoom()) return StoreResult::VolumeFull;
    std::string before;
    const FileRead read = Read(before);
    if (read == FileRead::Failed) return StoreResult::Unreadable;
    if (read == FileRead::TooLarge && !SetAside()) return StoreResult::Unreadable;
    std::string records = before;
    KeepWholeRecords(records);
    if (const StoreResult changed = change(records); changed != StoreResult::Done) return changed;
    KeepNewest(records);
    if (records.size() > largestFile) return StoreResult::VolumeFull;
    return records == before || Write(records) ? StoreResult::Done : StoreResult::WriteFailed;
}

FileRead StoreFile::Read(std::string& bytes) {
    const FileRead read = m_files.Read(m_path, largestFile, bytes);
    if (read != FileRead::Missing || m_factoryPath.empty()) return read;
    if (m_files.Read(m_factoryPath, largestFile, bytes) == FileRead::Whole && Write(bytes))
        return FileRead::Whole;
    LogFailure("cannot be made from the unit's copy");
    bytes.clear();
    return FileRead::Missing;
}

bool StoreFile::HasRoom() const {
    // The unit compares the low 32 bits only: 4 GiB and a little count as a little. When the volume does not
    // tell, the write itself will.
    const auto freeBytes = m_files.GetDiskFreeSpace("NandFlash");
    return !freeBytes || static_cast<std::uint32_t>(*freeBytes) >= 1u << 20;
}

bool StoreFile::SetAside() {
    if (!m_files.Rename(m_path, m_path + ".old")) return false;
    LogFailure("is too large and was set aside");
    return true;
}

bool StoreFile::Write(std::string_view bytes) {
    if (m_files.WriteWhole(m_path, bytes)) return true;
    // Most likely the directories are missing, as on a new unit.
    for (const char* directory : {"NandFlash\\System", "NandFlash\\System\\Phone"})
        m_files.CreateDirectory(directory);
    return m_files.WriteWhole(m_path, bytes);
}

void StoreFile::KeepWholeRecords(std::string& bytes) const {
    bytes.resize(bytes.size() - bytes.size() % m_recordBytes);
}

void StoreFile::KeepNewest(std::string& bytes) const {
    const std::size_t count = bytes.size() / m_recordBytes;
    if (count > m_capacity) bytes.erase(0, (count - m_capacity) * m_recordBytes);
}

void StoreFile::LogFailure(const char* what) {
    m_log.Trace("[StoreFile]--%s %s", m_path.c_str(), what);
}

}  // namespace varkel
