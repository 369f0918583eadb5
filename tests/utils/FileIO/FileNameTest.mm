#include "utils/FileIO/FileName.h"

#include "tests/utils/FileIO/CFText.h"
#include "tests/utils/FileIO/CapturedStderr.h"
#include "tests/utils/FileIO/LeakByDesign.h"
#include "tests/utils/FileIO/LibraryCalls.h"
#import "tests/utils/FileIO/PlatformCalls.h"
#include "tests/utils/FileIO/ScratchFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <type_traits>

namespace
{

const char* const kNotUtf8 = "/tmp/a\xff";
const char* const kNoSuchFile = "No such file or directory";

std::string NameOf(const CFileName& file) { return TakenText(file.GetNameCFString()); }

CFileName Parts(const char* pszDirectory, const char* pszName)
{
    CDiskPath path(pszDirectory);
    return CFileName(&path, pszName);
}

void ExpectParts(const CFileName& file, const char* pszDirectory, const char* pszName)
{
    EXPECT_TRUE(file == Parts(pszDirectory, pszName))
        << file.GetFullPath() << " with the name " << NameOf(file);
}

std::string URL(const char* pszDirectory, const char* pszName)
{
    return Parts(pszDirectory, pszName).GetURL();
}

std::string Cleaned(const char* pszName)
{
    CFileName file = Parts("/dir", pszName);
    file.Clean();
    ExpectParts(file, "/dir", NameOf(file).c_str());
    return NameOf(file);
}

class FileName : public PoolTest
{
  protected:
    CFileName Made(const std::string& strName)
    {
        return CFileName(m_folder.MakeFile(strName).c_str());
    }
    CFileName Missing() { return CFileName(m_folder.Path("missing").c_str()); }

    ScratchFolder m_folder;
};

} // namespace

TEST_F(FileName, OfNothingIsEmpty)
{
    EXPECT_TRUE(CFileName().Empty());
    EXPECT_TRUE(CFileName("").Empty());
    EXPECT_EQ(CFileName().GetFullPath(), "");
}

TEST_F(FileName, SplitsAtTheLastSlash)
{
    ExpectParts(CFileName("/dir/sub/take.wav"), "/dir/sub", "take.wav");
    ExpectParts(CFileName("take.wav"), "", "take.wav");
    ExpectParts(CFileName("/dir/"), "/dir", "");
    ExpectParts(CFileName("//take.wav"), "/", "take.wav");
    ExpectParts(CFileName("a\\b"), "", "a\\b");
}

TEST_F(FileName, LosesTheRoot)
{
    ExpectParts(CFileName("/take.wav"), "", "take.wav");
    EXPECT_EQ(CFileName("/take.wav").GetFullPath(), "take.wav");
    EXPECT_TRUE(CFileName("/").Empty());
}

TEST_F(FileName, SplitsAnyKindOfText)
{
    const std::string strPath = "/größe/日本.wav";
    const CFText text(strPath.c_str());
    ExpectParts(CFileName(&strPath), "/größe", "日本.wav");
    ExpectParts(CFileName(strPath.c_str()), "/größe", "日本.wav");
    ExpectParts(CFileName(static_cast<const __CFString*>(text)), "/größe", "日本.wav");
}

TEST_F(FileName, DoesNotSplitANameThatComesWithADirectory)
{
    CDiskPath path("/größe");
    const std::string strName = "sub/日本.wav";
    const CFText text(strName.c_str());
    for (const CFileName& file : {CFileName(&path, &strName), CFileName(&path, strName.c_str()),
                                  CFileName(&path, static_cast<const __CFString*>(text))})
    {
        EXPECT_EQ(NameOf(file), "sub/日本.wav");
        EXPECT_EQ(file.GetFullPath(), "/größe/sub/日本.wav");
    }
}

TEST_F(FileName, TakesNullForAnEmptyPart)
{
    CDiskPath path("/dir");
    const std::string strName = "take.wav";
    const std::string* const pstrNull = nullptr;
    const char* const pszNull = nullptr;
    const __CFString* const pNull = nullptr;
    EXPECT_TRUE(CFileName(pstrNull).Empty());
    EXPECT_TRUE(CFileName(pszNull).Empty());
    EXPECT_TRUE(CFileName(pNull).Empty());
    ExpectParts(CFileName(&path, pstrNull), "/dir", "");
    ExpectParts(CFileName(&path, pszNull), "/dir", "");
    ExpectParts(CFileName(&path, pNull), "/dir", "");
    ExpectParts(CFileName(nullptr, &strName), "", "take.wav");
}

TEST_F(FileName, OfAStringThatDoesNotConvertIsEmpty)
{
    const LeakByDesign leak;
    CDiskPath path("/dir");
    const CFText half = CFText::WithoutUtf8();
    EXPECT_TRUE(CFileName(static_cast<const __CFString*>(half)).Empty());
    ExpectParts(CFileName(&path, static_cast<const __CFString*>(half)), "/dir", "");
}

TEST_F(FileName, FreesTheArrayThatItConvertsThrough)
{
    LibraryCallScope calls;
    CDiskPath path("/dir");
    const CFText text("take.wav");
    const CFileName split(static_cast<const __CFString*>(text));
    const CFileName whole(&path, static_cast<const __CFString*>(text));
    EXPECT_EQ(gLibraryCalls.nArraysMade, 2);
    EXPECT_EQ(gLibraryCalls.nArraysFreed, 2);
}

TEST_F(FileName, HasNoVirtualOperations) { EXPECT_FALSE(std::is_polymorphic_v<CFileName>); }

TEST_F(FileName, CopiesBothParts)
{
    const CFileName file("/dir/take.wav");
    const CFileName copy(file);
    EXPECT_TRUE(copy == file);
    CFileName assigned("/other/file");
    assigned = file;
    EXPECT_TRUE(assigned == file);
    ExpectParts(assigned, "/dir", "take.wav");
}

TEST_F(FileName, AssignmentGivesNothing)
{
    EXPECT_TRUE((std::is_void_v<decltype(std::declval<CFileName&>() = CFileName())>));
}

TEST_F(FileName, OfAWalkingPathLeavesTheWalkAlone)
{
    m_folder.MakeFile("one.wav");
    m_folder.MakeFile("two.wav");
    CDiskPath path(m_folder.Path().c_str());
    CFileName file;
    ASSERT_TRUE(path.FirstFile(&file, "wav"));
    const CFileName other(&path, "other");
    file = other;
    EXPECT_TRUE(path.NextFile(&file));
    EXPECT_FALSE(path.NextFile(&file));
}

TEST_F(FileName, ComparesPartByPart)
{
    EXPECT_TRUE(Parts("a/b", "c") == Parts("a/b", "c"));
    EXPECT_FALSE(Parts("a/b", "c") == Parts("a", "b/c"));
    EXPECT_FALSE(Parts("a/b", "c") == Parts("a/b/", "c"));
    EXPECT_FALSE(Parts("a/b", "c") == Parts("a/b", "C"));
    EXPECT_TRUE(CFileName() == CFileName());
}

TEST_F(FileName, IsEmptyIfBothPartsAre)
{
    EXPECT_FALSE(Parts("/dir", "").Empty());
    EXPECT_FALSE(Parts("", "name").Empty());
    EXPECT_TRUE(Parts("", "").Empty());
}

TEST_F(FileName, FullPathJoinsWithOneSlash)
{
    EXPECT_EQ(Parts("/dir", "take.wav").GetFullPath(), "/dir/take.wav");
    EXPECT_EQ(Parts("/dir/", "take.wav").GetFullPath(), "/dir/take.wav");
    EXPECT_EQ(Parts("/", "take.wav").GetFullPath(), "/take.wav");
    EXPECT_EQ(Parts("", "take.wav").GetFullPath(), "take.wav");
    EXPECT_EQ(Parts("/dir", "").GetFullPath(), "/dir/");
    EXPECT_EQ(Parts("/dir//", "take.wav").GetFullPath(), "/dir//take.wav");
    EXPECT_EQ(Parts("/dir", "/take.wav").GetFullPath(), "/dir//take.wav");
}

TEST_F(FileName, FullPathStringIsTheSameText)
{
    EXPECT_EQ(Parts("/größe", "sub/日本.wav").GetFullPathString(), "/größe/sub/日本.wav");
    EXPECT_EQ(CFileName().GetFullPathString(), "");
}

TEST_F(FileName, GivesPlatformStringsOfTheCallers)
{
    static_assert(std::is_same_v<decltype(CFileName().GetFullPathCFString()), __CFString*>);
    static_assert(std::is_same_v<decltype(CFileName().GetNameCFString()), __CFString*>);
    static_assert(std::is_same_v<decltype(CDiskPath().GetFullPathCFString()), __CFString*>);
    const CFileName file("/größe/日本.wav");
    EXPECT_EQ(TakenText(file.GetFullPathCFString()), "/größe/日本.wav");
    EXPECT_EQ(TakenText(file.GetNameCFString()), "日本.wav");
}

TEST_F(FileName, ThatIsNotUtf8HasNoPlatformStrings)
{
    EXPECT_EQ(CFileName(kNotUtf8).GetFullPathCFString(), nullptr);
    EXPECT_EQ(CFileName(kNotUtf8).GetNameCFString(), nullptr);
}

TEST_F(FileName, ExtensionIsTheNamesAlone)
{
    EXPECT_EQ(CFileName("/dir.d/take.wav").GetExtension(), "wav");
    EXPECT_EQ(CFileName("/dir.d/take").GetExtension(), "");
    EXPECT_EQ(Parts("/dir", "sub.d/take").GetExtension(), "d/take");
}

TEST_F(FileName, URLHasTheFileOnLocalhost)
{
    EXPECT_EQ(URL("/dir", "take.wav"), "url:file://localhost//dir/take.wav");
    EXPECT_EQ(URL("dir", "take.wav"), "url:file://localhost/dir/take.wav");
    EXPECT_EQ(URL("", "take.wav"), "url:file://localhost//take.wav");
    EXPECT_EQ(URL("/dir/", "take.wav"), "url:file://localhost//dir//take.wav");
    EXPECT_EQ(URL("", ""), "url:file://localhost//");
}

TEST_F(FileName, URLDropsColonsAndTurnsBackslashes)
{
    EXPECT_EQ(URL("c:\\dir", "a\\b:c"), "url:file://localhost/c/dir/a/bc");
    EXPECT_EQ(Parts("c:\\dir", "a\\b:c").GetFullPath(), "c:\\dir/a\\b:c");
}

TEST_F(FileName, URLEncodesNothing)
{
    EXPECT_EQ(URL("/a b", "größe %?#.wav"), "url:file://localhost//a b/größe %?#.wav");
}

TEST_F(FileName, CleanReplacesEightBytesAndNoOther)
{
    const std::string strBad = "\"*:<>?\\|";
    for (int n = 1; n < 256; ++n)
    {
        SCOPED_TRACE(n);
        const char text[] = {static_cast<char>(n), '\0'};
        CFileName file = Parts("/dir", text);
        file.Clean();
        ExpectParts(file, "/dir", strBad.find(text[0]) == std::string::npos ? text : "_");
    }
    EXPECT_EQ(Cleaned("a\"b*c:d<e>f?g\\h|i"), "a_b_c_d_e_f_g_h_i");
}

TEST_F(FileName, CleanKeepsSubdirectoriesAndUtf8)
{
    EXPECT_EQ(Cleaned("sub/take.wav"), "sub/take.wav");
    EXPECT_EQ(Cleaned("größe 日本.wav"), "größe 日本.wav");
    EXPECT_EQ(Cleaned(""), "");
}

TEST_F(FileName, CleanTwiceIsCleanOnce)
{
    const std::string strOnce = Cleaned("a:b/c*?");
    EXPECT_EQ(Cleaned(strOnce.c_str()), strOnce);
}

TEST_F(FileName, CleanLeavesTheDirectory)
{
    CFileName file = Parts("c:\\dir", "a:b");
    file.Clean();
    ExpectParts(file, "c:\\dir", "a_b");
}

TEST_F(FileName, ExistsForAFileAndADirectory)
{
    EXPECT_TRUE(Made("größe 日本.wav").Exists());
    EXPECT_TRUE(CFileName(m_folder.MakeFolder("sub").c_str()).Exists());
    EXPECT_FALSE(Missing().Exists());
    EXPECT_FALSE(CFileName().Exists());
    EXPECT_FALSE(CFileName(kNotUtf8).Exists());
}

TEST_F(FileName, FileDeleteRemovesTheFile)
{
    CFileName file = Made("take.wav");
    EXPECT_EQ(file.FileDelete(), 0);
    EXPECT_FALSE(file.Exists());
}

TEST_F(FileName, FileDeleteGivesZeroWhateverHappens)
{
    m_folder.MakeFolder("full");
    m_folder.MakeFile("full/file");
    const CapturedStderr captured;
    EXPECT_EQ(Missing().FileDelete(), 0);
    EXPECT_EQ(CFileName(m_folder.Path("full").c_str()).FileDelete(), 0);
    EXPECT_TRUE(std::filesystem::exists(m_folder.Path("full/file")));
    EXPECT_EQ(captured.Text(), "");
}

TEST_F(FileName, FileDeleteOfAnEmptyPathCallsNothing)
{
    LibraryCallScope calls;
    EXPECT_EQ(CFileName("").FileDelete(), 0);
    EXPECT_EQ(gLibraryCalls.nRemoves, 0);
    EXPECT_EQ(Missing().FileDelete(), 0);
    EXPECT_EQ(gLibraryCalls.nRemoves, 1);
}

TEST_F(FileName, RenameFileMovesToACompletePathAndKeepsTheOldName)
{
    m_folder.MakeFolder("sub");
    CFileName file = Made("take.wav");
    const CapturedStderr captured;
    EXPECT_TRUE(file.RenameFile(m_folder.Path("sub/größe 日本.wav").c_str()));
    EXPECT_EQ(captured.Text(), "");
    EXPECT_FALSE(file.Exists());
    EXPECT_EQ(file.GetFullPath(), m_folder.Path("take.wav"));
    EXPECT_TRUE(std::filesystem::exists(m_folder.Path("sub/größe 日本.wav")));
}

TEST_F(FileName, AFailedRenameIsFalseAndLogsThePathAndTheError)
{
    CFileName file = Missing();
    const CapturedStderr captured;
    EXPECT_FALSE(file.RenameFile(m_folder.Path("new").c_str()));
    EXPECT_EQ(captured.LogLine(), "MoveFiles: " + file.GetFullPath() + " - " + kNoSuchFile);
}

TEST_F(FileName, RenameFileDoesNotReplaceAFile)
{
    CFileName file = Made("take.wav");
    m_folder.MakeFile("other.wav", "kept");
    const CapturedStderr captured;
    EXPECT_FALSE(file.RenameFile(m_folder.Path("other.wav").c_str()));
    EXPECT_EQ(captured.LogLine().find("MoveFiles: " + file.GetFullPath() + " - "), 0u);
    EXPECT_EQ(m_folder.Content("other.wav"), "kept");
    EXPECT_TRUE(file.Exists());
}

TEST_F(FileName, RenameFileFailsForTextsThatAreNotUtf8)
{
    CFileName file = Made("take.wav");
    const CapturedStderr captured;
    EXPECT_FALSE(file.RenameFile(kNotUtf8));
    EXPECT_FALSE(file.RenameFile(nullptr));
    EXPECT_FALSE(CFileName(kNotUtf8).RenameFile("/tmp/new"));
    EXPECT_TRUE(file.Exists());
}

TEST_F(FileName, ModificationTimeIsSecondsSince1970)
{
    CFileName file = Made("take.wav");
    const timespec times[2] = {{0, 0}, {1000000000, 250000000}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.GetFullPath().c_str(), times, 0), 0);
    EXPECT_NEAR(file.GetModificationDateTime(), 1000000000.25, 1e-5);
}

TEST_F(FileName, ModificationTimeOfAMissingFileIsZeroInSilence)
{
    const CapturedStderr captured;
    EXPECT_EQ(Missing().GetModificationDateTime(), 0.0);
    EXPECT_EQ(CFileName(kNotUtf8).GetModificationDateTime(), 0.0);
    EXPECT_EQ(captured.Text(), "");
}

TEST_F(FileName, SetModificationDateTimeSetsIt)
{
    CFileName file = Made("größe 日本.wav");
    const CapturedStderr captured;
    file.SetModificationDateTime(1234567890.0);
    EXPECT_EQ(captured.Text(), "");
    struct stat status;
    ASSERT_EQ(stat(file.GetFullPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_mtime, 1234567890);
    EXPECT_EQ(file.GetModificationDateTime(), 1234567890.0);
}

TEST_F(FileName, AFailedSetModificationDateTimeLogsThePathAndTheError)
{
    CFileName file = Missing();
    const CapturedStderr captured;
    file.SetModificationDateTime(1234567890.0);
    EXPECT_EQ(captured.LogLine(),
              "SetModificationDateTime: " + file.GetFullPath() + " - " + kNoSuchFile);
}

TEST_F(FileName, SetModificationDateTimeFailsForALinkToNothing)
{
    std::filesystem::create_symlink(m_folder.Path("missing"), m_folder.Path("link"));
    CFileName link(m_folder.Path("link").c_str());
    const CapturedStderr captured;
    link.SetModificationDateTime(1234567890.0);
    EXPECT_EQ(captured.LogLine(),
              "SetModificationDateTime: " + link.GetFullPath() + " - " + kNoSuchFile);
}

TEST_F(FileName, SetCreatorTypeIsSilentForAFile)
{
    CFileName file = Made("take.wav");
    const CapturedStderr captured;
    file.SetCreatorType(0x54724e6b, 0x57415645);
    EXPECT_EQ(captured.Text(), "");
}

TEST_F(FileName, AFailedSetCreatorTypeLogsThePathAndTheError)
{
    CFileName file = Missing();
    const CapturedStderr captured;
    file.SetCreatorType(1, 2);
    EXPECT_EQ(captured.LogLine(), "SetCreatorType: " + file.GetFullPath() + " - " + kNoSuchFile);
}

TEST_F(FileName, AttributesOfAPathThatIsNotUtf8AreNotSet)
{
    const CapturedStderr captured;
    CFileName(kNotUtf8).SetCreatorType(1, 2);
    CFileName(kNotUtf8).SetModificationDateTime(1.0);
    EXPECT_NE(captured.Text().find("SetCreatorType: "), std::string::npos);
    EXPECT_NE(captured.Text().find("SetModificationDateTime: "), std::string::npos);
}

TEST_F(FileName, TemporaryFileIsEmptyAndStaysUntilDeleted)
{
    LibraryCallScope calls;
    CFileName first = CFileName::MakeTemporaryFileName();
    const int nDescriptor = gLibraryCalls.nDescriptor;
    EXPECT_EQ(fcntl(nDescriptor, F_GETFD), -1) << "the descriptor is still open";
    CFileName second = CFileName::MakeTemporaryFileName();
    EXPECT_TRUE(first.Exists());
    EXPECT_EQ(std::filesystem::file_size(first.GetFullPath()), 0u);
    EXPECT_FALSE(first == second);
    first.FileDelete();
    second.FileDelete();
    EXPECT_FALSE(first.Exists());
}

TEST_F(FileName, TemporaryFileLiesInThePlatformsDirectoryUnderItsTemplate)
{
    const std::string strBase = m_folder.MakeFolder("größe 日本");
    const TemporaryDirectoryScope base([NSString stringWithUTF8String:strBase.c_str()]);
    LibraryCallScope calls;
    const CFileName file = CFileName::MakeTemporaryFileName();
    EXPECT_EQ(gLibraryCalls.strTemplate, strBase + "/Tarvane.XXXXXX");
    EXPECT_EQ(gLibraryCalls.nLastArraySize, gLibraryCalls.strTemplate.size() + 10);
    EXPECT_EQ(gLibraryCalls.nArraysMade, gLibraryCalls.nArraysFreed);
    const std::string strName = NameOf(file);
    ExpectParts(file, strBase.c_str(), strName.c_str());
    EXPECT_EQ(strName.size(), 14u);
    EXPECT_EQ(strName.substr(0, 8), "Tarvane.");
    EXPECT_TRUE(std::filesystem::is_regular_file(file.GetFullPath()));
}

TEST_F(FileName, TemporaryFileFallsBackToTmp)
{
    const TemporaryDirectoryScope base(nil);
    LibraryCallScope calls;
    CFileName file = CFileName::MakeTemporaryFileName();
    EXPECT_EQ(gLibraryCalls.strTemplate, "/tmp/Tarvane.XXXXXX");
    EXPECT_TRUE(file.Exists());
    file.FileDelete();
}

TEST_F(FileName, TemporaryFileThatCannotBeMadeIsEmpty)
{
    LibraryCallScope calls;
    gLibraryCalls.fFailTemporary = true;
    const CapturedStderr captured;
    EXPECT_TRUE(CFileName::MakeTemporaryFileName().Empty());
    EXPECT_EQ(captured.Text(), "");
    EXPECT_EQ(gLibraryCalls.nArraysMade, gLibraryCalls.nArraysFreed);
}

TEST_F(FileName, ServicesDrainAPoolOfTheirOwn)
{
    CFileName file = Made("take.wav");
    CFileName missing = Missing();
    const std::string strNew = m_folder.Path("new.wav");
    const CapturedStderr captured;
    EXPECT_EQ(ObjectsLeftBy([&] { file.Exists(); }), 0);
    EXPECT_EQ(ObjectsLeftBy([&] { file.SetCreatorType(1, 2); }), 0);
    EXPECT_EQ(ObjectsLeftBy([&] { missing.SetCreatorType(1, 2); }), 0);
    EXPECT_EQ(ObjectsLeftBy([&] { file.GetModificationDateTime(); }), 0);
    EXPECT_EQ(ObjectsLeftBy([&] { file.SetModificationDateTime(1.0); }), 0);
    EXPECT_EQ(ObjectsLeftBy([&] { missing.SetModificationDateTime(1.0); }), 0);
    EXPECT_EQ(ObjectsLeftBy([&] { missing.RenameFile(strNew.c_str()); }), 0);
    EXPECT_EQ(ObjectsLeftBy([&] { file.RenameFile(strNew.c_str()); }), 0);
    CFileName temporary;
    EXPECT_EQ(ObjectsLeftBy([&] { temporary = CFileName::MakeTemporaryFileName(); }), 0);
    temporary.FileDelete();
}

namespace
{

std::vector<std::string> gDateCalls;
NSDate* gDate = nil;

id GiveDate(id, SEL) { return gDate; }

} // namespace

// Tells of what is done to it.
@interface TellingDate : NSDate
@end

@implementation TellingDate

- (id)init
{
    return self;
}

- (NSTimeInterval)timeIntervalSinceReferenceDate
{
    return 12.5 - NSTimeIntervalSince1970;
}

- (NSTimeInterval)timeIntervalSince1970
{
    gDateCalls.push_back("read");
    return 12.5;
}

- (id)retain
{
    gDateCalls.push_back("retain");
    return [super retain];
}

- (oneway void)release
{
    gDateCalls.push_back("release");
    [super release];
}

@end

TEST_F(FileName, GetModificationDateTimeHoldsTheDateWhileItReadsIt)
{
    CFileName file = Made("take.wav");
    NSDictionary* attributes = [[NSFileManager defaultManager] attributesOfItemAtPath:@"/"
                                                                                error:nullptr];
    const MethodScope method(
        class_getInstanceMethod([attributes class], @selector(fileModificationDate)), GiveDate);
    gDate = [[TellingDate alloc] init];
    gDateCalls.clear();
    EXPECT_EQ(file.GetModificationDateTime(), 12.5);
    EXPECT_THAT(gDateCalls, testing::ElementsAre("retain", "read", "release"));
    [gDate release];
}

// Which file manager is asked.

namespace
{

id gAskedManager = nil;

NSDictionary* NoAttributes(id self, SEL, NSString*, NSError**)
{
    gAskedManager = self;
    return nil;
}

BOOL RefuseMove(id self, SEL, NSString*, NSString*, NSError**)
{
    gAskedManager = self;
    return NO;
}

// Whether the operation asks the manager that all share.
template <typename Operation> bool AsksTheSharedManager(Operation operation)
{
    gAskedManager = nil;
    operation();
    return gAskedManager == [NSFileManager defaultManager];
}

} // namespace

TEST_F(FileName, ServicesAreTheSharedManagers)
{
    const MethodScope attributes(
        class_getInstanceMethod([NSFileManager class], @selector(attributesOfItemAtPath:error:)),
        NoAttributes);
    const MethodScope move(
        class_getInstanceMethod([NSFileManager class], @selector(moveItemAtPath:toPath:error:)),
        RefuseMove);
    const CapturedStderr captured;
    CFileName file("/dir/take.wav");
    EXPECT_TRUE(AsksTheSharedManager([&] { EXPECT_FALSE(file.Exists()); }));
    EXPECT_TRUE(AsksTheSharedManager([&] { EXPECT_FALSE(CDiskPath("/dir").Exists()); }));
    EXPECT_TRUE(AsksTheSharedManager([&] { EXPECT_EQ(file.GetModificationDateTime(), 0.0); }));
    EXPECT_TRUE(AsksTheSharedManager([&] { EXPECT_FALSE(file.RenameFile("/dir/new.wav")); }));
}

// What the file manager is handed.

namespace
{

struct SetAttributesCall
{
    NSDictionary* attributes = nil;
    NSString* strPath = nil;
    id manager = nil;
};

SetAttributesCall gCall;

BOOL RefuseAttributes(id self, SEL, NSDictionary* attributes, NSString* strPath, NSError** pError)
{
    gCall.attributes = [attributes retain];
    gCall.strPath = [strPath retain];
    gCall.manager = self;
    *pError =
        [NSError errorWithDomain:@"test"
                            code:1
                        userInfo:[NSDictionary dictionaryWithObject:@"100% refused"
                                                             forKey:NSLocalizedDescriptionKey]];
    return NO;
}

class FileNameAttributes : public PoolTest
{
  protected:
    FileNameAttributes()
        : m_refusal(class_getInstanceMethod([NSFileManager class], @selector(setAttributes:
                                                                              ofItemAtPath:error:)),
                    RefuseAttributes)
    {
        gCall = SetAttributesCall();
    }
    ~FileNameAttributes() override
    {
        [gCall.attributes release];
        [gCall.strPath release];
    }

    MethodScope m_refusal;
};

} // namespace

TEST_F(FileNameAttributes, CreatorAndTypeGoUnderTheirKeys)
{
    CFileName file("/größe/50%@.wav");
    const CapturedStderr captured;
    file.SetCreatorType(0xfffffffful, 2);
    EXPECT_EQ(captured.LogLine(), "SetCreatorType: /größe/50%@.wav - 100% refused");
    EXPECT_EQ([gCall.attributes count], 2u);
    EXPECT_EQ([[gCall.attributes objectForKey:NSFileHFSCreatorCode] unsignedLongValue],
              0xfffffffful);
    EXPECT_EQ([[gCall.attributes objectForKey:NSFileHFSTypeCode] unsignedLongValue], 2ul);
    EXPECT_STREQ([gCall.strPath UTF8String], "/größe/50%@.wav");
    EXPECT_EQ(gCall.manager, [NSFileManager defaultManager]);
}

TEST_F(FileNameAttributes, DateGoesUnderItsKey)
{
    CFileName file("/größe/take.wav");
    const CapturedStderr captured;
    file.SetModificationDateTime(1234.5);
    EXPECT_EQ(captured.LogLine(), "SetModificationDateTime: /größe/take.wav - 100% refused");
    EXPECT_EQ([gCall.attributes count], 1u);
    EXPECT_EQ([[gCall.attributes objectForKey:NSFileModificationDate] timeIntervalSince1970],
              1234.5);
    EXPECT_STREQ([gCall.strPath UTF8String], "/größe/take.wav");
    EXPECT_EQ(gCall.manager, [NSFileManager defaultManager]);
}
