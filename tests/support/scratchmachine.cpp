#include "scratchmachine.h"
#include "platform/handles.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace test {
namespace {

constexpr SYSTEMTIME CreationTime = {2006, 6, 3, 21, 13, 5, 9, 0};

}  // namespace

bool MayChangeThisMachine() {
  return GetEnvironmentVariableA("DRIVERINFO_TESTS_MAY_CHANGE_THIS_MACHINE", nullptr, 0) > 0 || IsPrivateMachine();
}

void ScratchMachine::SetUp() {
  if (!MayChangeThisMachine()) {
    GTEST_SKIP() << "changes services, registry or system files, and this is not a scratch machine; set "
                    "DRIVERINFO_TESTS_MAY_CHANGE_THIS_MACHINE to run it all the same";
  }
}

ScratchFile::ScratchFile(const std::string& path, std::size_t size) : m_path(path) {
  RefuseExisting();
  m_firstFolderMade = MakeFoldersFor(path);
  const Orvane::FileHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
  LARGE_INTEGER end;
  end.QuadPart = static_cast<LONGLONG>(size);
  if (!SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN) || !SetEndOfFile(file.get()))
    throw std::runtime_error("cannot write " + path);
  SetFileCreationTime(path, CreationTime);
}

ScratchFile::ScratchFile(const std::string& path, const std::wstring& image) : m_path(path) {
  RefuseExisting();
  m_firstFolderMade = CopyImage(image, path);
  SetFileCreationTime(path, CreationTime);
}

ScratchFile::ScratchFile(const std::string& path, const std::vector<std::string>& lines) : m_path(path) {
  RefuseExisting();
  m_firstFolderMade = MakeFoldersFor(path);
  std::ofstream file(path, std::ios::binary);
  for (const std::string& line : lines) file << line << "\r\n";
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

void ScratchFile::RefuseExisting() const {
  if (GetFileAttributesA(m_path.c_str()) != INVALID_FILE_ATTRIBUTES)
    throw std::runtime_error(m_path + " exists already");
}

ScratchFile::~ScratchFile() {
  DeleteFileA(m_path.c_str());
  if (m_firstFolderMade.empty()) return;
  for (std::string folder = m_path.substr(0, m_path.rfind('\\')); folder.size() >= m_firstFolderMade.size();
       folder.resize(folder.rfind('\\'))) {
    RemoveDirectoryA(folder.c_str());
  }
}

EnvironmentVariable::EnvironmentVariable(const std::string& name, const std::string& value) : m_name(name) {
  char former[1024];
  m_former.assign(former, GetEnvironmentVariableA(name.c_str(), former, sizeof(former)));
  _putenv_s(name.c_str(), value.c_str());
}

EnvironmentVariable::~EnvironmentVariable() { _putenv_s(m_name.c_str(), m_former.c_str()); }

}  // namespace test
