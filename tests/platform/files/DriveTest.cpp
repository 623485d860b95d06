#include "tests/platform/files/Mounted.h"
#include "tests/platform/profile/IniFixture.h"

#include <sys/statfs.h>

namespace fs = std::filesystem;

namespace {

// A system of its own: its mount table and block devices.
struct System : test::TempDir
{
    System()
    {
        Mounts({});
        KXHost::SetSystemRoot(Path());
    }
    ~System() { KXHost::SetSystemRoot(""); }

    void Disk(const std::string& name, const char* number, bool bRemovable, const char* type = "0") const
    {
        Write("sys/block/" + name + "/removable", bRemovable ? "1\n" : "0\n");
        Write("sys/block/" + name + "/device/type", std::string(type) + "\n");
        Write("sys/block/" + name + "/dev", std::string(number) + "\n");
    }
    void Mounts(const std::vector<std::string>& lines) const
    {
        std::string table =
            "1 0 254:0 / / rw shared:1 - ext4 /dev/root rw\nnot a line\n\n2 1 0:1 / /proc rw - proc\n";
        for (const auto& line : lines)
            table += line + "\n";
        Write("proc/self/mountinfo", table);
    }
    // A mount of a device at a directory of this system.
    std::string Line(const char* number, std::string_view point, const char* source,
                     const char* options = "rw", const char* root = "/") const
    {
        MakeDir(point);
        std::string escaped = Path(point);
        for (std::size_t at; (at = escaped.find(' ')) != escaped.npos;)
            escaped.replace(at, 1, "\\040");
        return std::string("9 1 ") + number + " " + root + " " + escaped + " " + options +
               " shared:7 master:1 - vfat " + source + " rw";
    }
    void Link(const std::string& link, const std::string& target) const
    {
        fs::create_directories(fs::path(Path(link)).parent_path());
        fs::create_symlink(target, Path(link));
    }
};

// The kinds of the drives from C on, a digit each, up to the last that exists.
std::string Kinds()
{
    std::string kinds;
    for (char letter = 'C'; letter <= 'Z'; ++letter)
        kinds += static_cast<char>('0' + GetDriveTypeA((std::string(1, letter) + ":\\").c_str()));
    return kinds.substr(0, kinds.find_last_not_of('1') + 1);
}

struct Volume
{
    explicit Volume(const char* pszRoot, DWORD nLabelSize = 32)
        : found(GetVolumeInformationA(pszRoot, label.data(), nLabelSize, &serial, &component, &flags,
                                      system.data(), 32))
    {
    }

    std::array<char, 32> label{};
    std::array<char, 32> system{};
    DWORD serial = 0;
    DWORD component = 0;
    DWORD flags = 0;
    int found;
};

} // namespace

TEST(Drives, RemovableMediaAndOpticalDrivesGetLettersThatStay)
{
    const System system;
    EXPECT_EQ(Kinds(), "3");
    system.Disk("sda", "8:0", false);
    system.Write("sys/block/sda/sda1/dev", "8:1\n");
    system.Disk("sr0", "11:0", true, "5");
    system.Disk("sdb", "8:16", true);
    system.Write("sys/block/sdb/sdb1/dev", "8:17\n");
    const auto fixed = system.Line("8:1", "fixed", "/dev/sda1");
    const auto stick = system.Line("8:17", "media/MY STICK", "/dev/disk/by-label/MY");
    const auto disc = system.Line("0:77", "media/disc", "/dev/sr0");
    EXPECT_EQ(Kinds(), "35"); // an optical drive is there without a medium
    EXPECT_EQ(KXHost::ToSystemPath("D:\\"), "");
    EXPECT_EQ(GetLastError(), ERROR_NOT_READY);

    system.Mounts({fixed, stick, disc});
    EXPECT_EQ(Kinds(), "352");
    EXPECT_EQ(KXHost::ToSystemPath("e:\\a"), system.Path("media/MY STICK/a"));
    EXPECT_EQ(KXHost::ToSystemPath("D:\\"), system.Path("media/disc"));
    EXPECT_EQ(KXHost::FromSystemPath(system.Path("media/MY STICK/a")), "E:\\a");
    system.Mounts({fixed});
    EXPECT_EQ(Kinds(), "35");
    EXPECT_EQ(KXHost::ToSystemPath("E:\\a"), "");

    system.Disk("sdc", "8:32", true);
    system.Mounts({system.Line("8:32", "media/new", "/dev/sdc"), stick});
    EXPECT_EQ(Kinds(), "3522");
    EXPECT_EQ(KXHost::ToSystemPath("E:\\"), system.Path("media/MY STICK"));
    EXPECT_EQ(KXHost::ToSystemPath("F:\\"), system.Path("media/new"));
}

TEST(Drives, GetLettersUpToZ)
{
    const System system;
    std::vector<std::string> mounts;
    for (char n = 'a'; n < 'a' + 24; ++n) {
        const std::string number = "8:" + std::to_string(n);
        system.Disk(std::string("sd") + n, number.c_str(), true);
        mounts.push_back(system.Line(number.c_str(), std::string(1, n), "/dev/sd"));
    }
    system.Mounts(mounts);
    EXPECT_EQ(Kinds(), "3" + std::string(23, '2'));
    EXPECT_EQ(KXHost::ToSystemPath("Z:\\"), system.Path("w")); // the last has none
}

TEST(Drives, AnotherMediumsFilesAreReadAnew)
{
    const System system;
    system.Disk("sdb", "8:16", true);
    for (const char* place : {"one", "two"}) {
        test::LetSettle(system.Write(std::string(place) + "/a.ini", std::string("[s]\nk=") + place));
        system.Mounts({system.Line("8:16", place, "/dev/sdb")});
        EXPECT_EQ(GetDriveTypeA("D:\\"), DRIVE_REMOVABLE); // looks once
        std::array<char, 8> value{};
        GetPrivateProfileStringA("s", "k", "", value.data(), 8, "D:\\a.ini");
        EXPECT_STREQ(value.data(), place);
    }
}

TEST(Drives, WholeMountsComeBeforePartsAndTheRootIsNoDrive)
{
    const System system;
    system.Disk("sdb", "254:0", true);
    system.Write("sys/block/sdb/sdb1/dev", "8:17\n");
    system.Mounts({system.Line("8:17", "part", "/dev/sdb1", "rw", "/sub"),
                   system.Line("8:17", "whole", "/dev/sdb1"), system.Line("8:17", "again", "/dev/sdb1"),
                   system.Line("8:17", "no/device", "tmpfs")});
    EXPECT_EQ(Kinds(), "32"); // the disk that `/` is on has the number of `sdb`
    EXPECT_EQ(KXHost::ToSystemPath("D:\\"), system.Path("whole"));
    struct statfs info = {};
    ASSERT_EQ(statfs(system.Path().c_str(), &info), 0);
    EXPECT_EQ(Volume("D:\\").serial, static_cast<DWORD>(info.f_fsid.__val[0] ^ info.f_fsid.__val[1]))
        << "by its file system, for want of a UUID";
}

TEST(Drives, HostsDrivesStandBeforeTheSystems)
{
    const System system;
    KXHost::Drive host;
    host.nType = DRIVE_CDROM;
    EXPECT_TRUE(KXHost::MountDrive('d', host));
    system.Disk("sdb", "8:16", true);
    system.Mounts({system.Line("8:16", "stick", "/dev/sdb")});
    EXPECT_EQ(Kinds(), "352"); // the system's goes round the host's letter
    host.strRoot = system.Path();
    host.nType = DRIVE_REMOTE;
    EXPECT_TRUE(KXHost::MountDrive('E', host));
    EXPECT_EQ(Kinds(), "354");
    EXPECT_TRUE(KXHost::MountDrive('F', host)); // of two letters for one directory the first names it
    EXPECT_EQ(KXHost::FromSystemPath(system.Path("stick/a")), "E:\\stick\\a");
    for (const char letter : {'D', 'E', 'F'})
        KXHost::UnmountDrive(letter);
    EXPECT_EQ(Kinds(), "312");
    EXPECT_EQ(KXHost::FromSystemPath(system.Path("stick/a")), "E:\\a");
    for (const char letter : {'A', 'Z', 'a', 'z'}) {
        EXPECT_TRUE(KXHost::MountDrive(letter, host));
        EXPECT_EQ(GetDriveTypeA((letter + std::string(":")).c_str()), DRIVE_REMOTE) << letter;
        KXHost::UnmountDrive(letter);
    }
    for (const char none : {'1', '@', '[', '`', '{'})
        EXPECT_FALSE(KXHost::MountDrive(none, host)) << none;
    host.strRoot = "relative";
    EXPECT_FALSE(KXHost::MountDrive('D', host));
}

TEST(Drives, VolumesTellLabelSerialAndFileSystem)
{
    const System system;
    system.Disk("sdb", "8:16", true);
    system.Write("sys/block/sdb/sdb1/dev", "8:17\n");
    system.Mounts({system.Line("8:17", "stick 0123", "/dev/sdb1", "ro,nosuid")});
    system.Link("dev/disk/by-label/other", "../../sda1");
    system.Link("dev/disk/by-label/\xE8\xAA\xA0\\x20xface\\x2fy\\x01\\xg0\\x", "../../sdb1");
    system.Link("dev/disk/by-uuid/1A0B-3c4D", "../../sdb1");
    system.Link("dev/disk/by-uuid/0f0e0d0c-0b0a-0908-0706-0504deadbeef", "../../nvme0n1p2");
    system.Link("sys/dev/block/254:0", "../../devices/pci/nvme0n1/nvme0n1p2");

    const Volume stick("D:\\");
    EXPECT_TRUE(stick.found);
    EXPECT_STREQ(stick.label.data(), "\xD5\x5C xface/y\x01\\xg0\\x");
    EXPECT_STREQ(stick.system.data(), "vfat");
    EXPECT_EQ(stick.serial, 0x1A0B3C4Du);
    EXPECT_GT(stick.component, 100u);
    EXPECT_EQ(stick.flags & 0x80000, 0x80000u);
    EXPECT_STREQ(Volume("D:", 2).label.data(), ""); // never half a character
    const Volume root("c:/");
    EXPECT_STREQ(root.label.data(), "");
    EXPECT_STREQ(root.system.data(), "ext4");
    EXPECT_EQ(root.serial, 0xDEADBEEFu);
    EXPECT_EQ(root.flags & 0x80000, 0u);
    EXPECT_EQ(GetVolumeInformationA("C:\\", nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0), 1);

    {
        const test::Mounted drive({"", DRIVE_FIXED, "Label", "UDF", 7});
        EXPECT_STREQ(Volume("X:\\").label.data(), "Label");
        EXPECT_STREQ(Volume("X:\\").system.data(), "UDF");
        EXPECT_EQ(Volume("X:\\").serial, 7u);
    }
    EXPECT_FALSE(Volume("X:\\").found);
    for (const char* path :
         {"D:\\dir", "D", "", "DD:\\", "1:\\", "\\\\", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(GetDriveTypeA(path), DRIVE_NO_ROOT_DIR);
        EXPECT_FALSE(GetVolumeInformationA(path, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
    }
}

TEST(Drives, DrivesWithoutAMediumAreThereButNotReady)
{
    for (const char* root : {"", "/no/such/directory"}) {
        KXHost::MountDrive('X', {root, DRIVE_CDROM, "", "", 0});
        EXPECT_EQ(GetDriveTypeA("X:\\"), DRIVE_CDROM);
        EXPECT_FALSE(Volume("X:\\").found);
        EXPECT_EQ(GetLastError(), ERROR_NOT_READY);
        EXPECT_FALSE(PathFileExistsA("X:\\a"));
    }
    KXHost::UnmountDrive('X');
}

TEST(Drives, ChangesOfTheSystemsMountsAreHeardOf)
{
    EXPECT_EQ(GetDriveTypeA("Q:\\"), DRIVE_NO_ROOT_DIR);
    const auto isTable = [](const auto& entry) {
        std::error_code gone; // the descriptor by which the directory is read
        return fs::read_symlink(entry.path(), gone).filename() == "mountinfo";
    };
    EXPECT_EQ(std::ranges::count_if(fs::directory_iterator("/proc/self/fd"), isTable), 1);
}
