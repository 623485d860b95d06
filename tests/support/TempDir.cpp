#include "tests/support/TempDir.h"

namespace fs = std::filesystem;

namespace test {

TempDir::TempDir()
{
    std::string pattern = (fs::temp_directory_path() / "kxtest-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
    m_path = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::string TempDir::Path(std::string_view relative) const
{
    return m_path + "/" + std::string(relative);
}

CString TempDir::Win(std::string_view relative) const
{
    std::string path = "C:" + m_path;
    std::replace(path.begin(), path.end(), '/', '\\');
    if (!relative.empty()) path.append("\\").append(relative);
    return CString(path.c_str());
}

void TempDir::MakeDir(std::string_view relative) const
{
    fs::create_directories(Path(relative));
}

std::string TempDir::Write(std::string_view relative, std::string_view content) const
{
    const std::string path = Path(relative);
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    return path;
}

std::string TempDir::Read(std::string_view relative) const
{
    return ReadFile(Path(relative));
}

bool TempDir::Exists(std::string_view relative) const
{
    return fs::exists(fs::symlink_status(Path(relative)));
}

FileLimit::FileLimit(rlim_t nBytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
{
    getrlimit(RLIMIT_FSIZE, &m_old);
    const rlimit lower{nBytes, m_old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &lower);
}

FileLimit::~FileLimit()
{
    setrlimit(RLIMIT_FSIZE, &m_old);
    std::signal(SIGXFSZ, m_handler);
}

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace test
