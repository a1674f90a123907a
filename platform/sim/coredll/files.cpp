#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

constexpr LONG kNameTooLong = 206;  // ERROR_FILENAME_EXCED_RANGE

// "CFG1:" and "$bus\OTG_0_2_0": names of drivers, not of files.
bool IsDriverName(std::u16string_view name) {
  return !name.empty() && (name.front() == u'$' || (name.size() == 5 && name.back() == u':'));
}

// Finds or creates the file, as the disposition of an open says. Sets the error where that fails.
std::shared_ptr<FileNode> NodeToOpen(Call& call, std::string_view path, DWORD disposition,
                                     LONG& error) {
  FileSystem& files = call.kernel().files;
  const bool makes =
      disposition == CREATE_NEW || disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
  auto node = files.Find(path);
  if (node != nullptr && disposition == CREATE_NEW) error = 80;  // ERROR_FILE_EXISTS
  if (node != nullptr && node->is_folder) error = ERROR_ACCESS_DENIED;
  if (node == nullptr) {
    error = makes ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    if (makes) node = files.CreateFile(path);
    if (makes && node == nullptr) error = ERROR_PATH_NOT_FOUND;
    if (node != nullptr) call.Log(Effect::kFile, fmt::format("{} created", path));
  }
  return error == ERROR_SUCCESS ? node : nullptr;
}

// A driver can only be opened, not created. One with a single user must be opened for reading and
// writing, without sharing.
HANDLE OpenDriver(Call& call, std::string_view name, DWORD access, DWORD share, DWORD disposition) {
  for (const auto& driver : call.kernel().hardware.drivers) {
    if (!EqualNoCase(driver->name(), name)) continue;
    const bool has_one_user = driver->users() == DriverUsers::kOne;
    const bool is_usable =
        disposition == OPEN_EXISTING &&
        (!has_one_user || (access == (GENERIC_READ | GENERIC_WRITE) && share == 0));
    if (!is_usable) {
      call.Misuse(fmt::format("was given the access {:#x}, share {} and disposition {} for {}",
                              access, share, disposition, driver->name()));
      return call.Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
    }
    if (!driver->Open()) return call.Fail(ERROR_SHARING_VIOLATION, INVALID_HANDLE_VALUE);
    return call.AddHandle(std::make_shared<DriverObject>(driver));
  }
  return call.Fail(ERROR_DEV_NOT_EXIST, INVALID_HANDLE_VALUE);
}

// Whether a call other than CloseHandle closes such objects.
bool HasOwnClose(ObjectKind kind) {
  return kind == ObjectKind::kKey || kind == ObjectKind::kCryptContext ||
         kind == ObjectKind::kCryptHash;
}

BOOL Refuse(Call& call, LONG error) {
  return call.Fail(error, FALSE);
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;
using sim::Effect;

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES /*security*/,
                   DWORD disposition, DWORD /*flags*/, HANDLE /*unused*/) {
  Call call(CallId::CreateFileW, sim::Named(name));
  if (call.fault() != 0) return call.Fail(call.fault(), INVALID_HANDLE_VALUE);
  if (name == nullptr || disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING) {
    return call.Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
  }
  const std::u16string_view wide(name);
  if (wide.size() >= MAX_PATH) return call.Fail(sim::kNameTooLong, INVALID_HANDLE_VALUE);
  std::string path = sim::ToUtf8(wide);
  if (sim::IsDriverName(wide)) return sim::OpenDriver(call, path, access, share, disposition);

  LONG error = ERROR_SUCCESS;
  auto node = sim::NodeToOpen(call, path, disposition, error);
  if (node == nullptr) return call.Fail(error, INVALID_HANDLE_VALUE);
  const bool reads = (access & GENERIC_READ) != 0;
  const bool writes = (access & GENERIC_WRITE) != 0;
  const bool share_read = (share & FILE_SHARE_READ) != 0;
  const bool share_write = (share & FILE_SHARE_WRITE) != 0;
  if (!sim::FileObject::MayOpen(*node, reads, writes, share_read, share_write)) {
    return call.Fail(ERROR_SHARING_VIOLATION, INVALID_HANDLE_VALUE);
  }
  if (disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING) node->data.clear();
  return call.AddHandle(std::make_shared<sim::FileObject>(std::move(node), std::move(path), reads,
                                                          writes, share_read, share_write));
}

BOOL ReadFile(HANDLE handle, LPVOID buffer, DWORD bytes, LPDWORD bytes_read,
              LPOVERLAPPED overlapped) {
  Call call(CallId::ReadFile);
  if (call.fault() != 0) return sim::Refuse(call, call.fault());
  if (!call.IsNotOverlapped(overlapped)) return FALSE;
  if (bytes_read == nullptr || (buffer == nullptr && bytes > 0)) {
    return sim::Refuse(call, ERROR_INVALID_PARAMETER);
  }
  *bytes_read = 0;
  const auto file = call.Find<sim::FileObject>(handle);
  if (file == nullptr) return FALSE;
  if (!file->reads) return sim::Refuse(call, ERROR_ACCESS_DENIED);
  const std::vector<BYTE>& data = file->node->data;
  const std::size_t left = data.size() - std::min(file->position, data.size());
  const std::size_t count = std::min<std::size_t>(call.Transferable(bytes), left);
  if (count > 0) std::memcpy(buffer, data.data() + file->position, count);
  file->position += count;
  *bytes_read = static_cast<DWORD>(count);
  return TRUE;
}

BOOL WriteFile(HANDLE handle, LPCVOID buffer, DWORD bytes, LPDWORD bytes_written,
               LPOVERLAPPED overlapped) {
  Call call(CallId::WriteFile);
  if (call.fault() != 0) return sim::Refuse(call, call.fault());
  if (!call.IsNotOverlapped(overlapped)) return FALSE;
  if (bytes_written == nullptr || (buffer == nullptr && bytes > 0)) {
    return sim::Refuse(call, ERROR_INVALID_PARAMETER);
  }
  *bytes_written = 0;
  const auto file = call.Find<sim::FileObject>(handle);
  if (file == nullptr) return FALSE;
  if (!file->writes) return sim::Refuse(call, ERROR_ACCESS_DENIED);
  bytes = call.Transferable(bytes);
  std::vector<BYTE>& data = file->node->data;
  const std::size_t end = file->position + bytes;
  if (data.size() < end) data.resize(end);
  if (bytes > 0) std::memcpy(data.data() + file->position, buffer, bytes);
  call.Log(Effect::kFile,
           fmt::format("{} written: {} bytes at {}", file->path, bytes, file->position));
  file->position = end;
  *bytes_written = bytes;
  return TRUE;
}

DWORD SetFilePointer(HANDLE handle, LONG distance, LONG* distance_high, DWORD origin) {
  Call call(CallId::SetFilePointer);
  constexpr DWORD kFailed = 0xFFFFFFFF;
  if (call.fault() != 0) return call.Fail(call.fault(), kFailed);
  const auto file = call.Find<sim::FileObject>(handle);
  if (file == nullptr) return kFailed;
  const std::int64_t base = origin == FILE_BEGIN ? 0
                            : origin == FILE_CURRENT
                                ? static_cast<std::int64_t>(file->position)
                                : static_cast<std::int64_t>(file->node->data.size());
  const std::int64_t target = base + distance;
  const bool usable = origin <= FILE_END && target >= 0 && target < kFailed &&
                      (distance_high == nullptr || *distance_high == 0);
  if (!usable) return call.Fail(ERROR_INVALID_PARAMETER, kFailed);
  file->position = static_cast<std::size_t>(target);
  return static_cast<DWORD>(target);
}

DWORD GetFileSize(HANDLE handle, LPDWORD size_high) {
  Call call(CallId::GetFileSize);
  if (call.fault() != 0) return call.Fail(call.fault(), INVALID_FILE_SIZE);
  const auto file = call.Find<sim::FileObject>(handle);
  if (file == nullptr) return INVALID_FILE_SIZE;
  if (size_high != nullptr) *size_high = 0;
  auto size = static_cast<DWORD>(file->node->data.size());
  const LONG error = call.Answer(size);
  return error == ERROR_SUCCESS ? size : call.Fail(error, INVALID_FILE_SIZE);
}

DWORD GetFileAttributesW(LPCWSTR name) {
  Call call(CallId::GetFileAttributesW);
  if (call.fault() != 0) return call.Fail(call.fault(), INVALID_FILE_ATTRIBUTES);
  if (name == nullptr) return call.Fail(ERROR_INVALID_PARAMETER, INVALID_FILE_ATTRIBUTES);
  const std::string path = sim::ToUtf8(name);
  const auto node = call.kernel().files.Find(path);
  if (node == nullptr) {
    return call.Fail(ERROR_FILE_NOT_FOUND, INVALID_FILE_ATTRIBUTES);
  }
  return node->is_folder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}

BOOL CloseHandle(HANDLE handle) {
  Call call(CallId::CloseHandle);
  const auto object = call.FindObject(handle);
  if (object == nullptr) return FALSE;
  if (sim::HasOwnClose(object->kind())) {
    call.Misuse(fmt::format("was given a {}", sim::ObjectKindName(object->kind())));
    return sim::Refuse(call, ERROR_INVALID_HANDLE);
  }
  call.kernel().handles.Close(reinterpret_cast<std::uintptr_t>(handle));
  return call.fault() == 0 ? TRUE : sim::Refuse(call, call.fault());
}
