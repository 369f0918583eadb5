#include "utils/FileIO/DiskPath.h"

#include "tests/utils/FileIO/CFText.h"
#include "tests/utils/FileIO/CapturedStderr.h"
#include "tests/utils/FileIO/LeakByDesign.h"
#include "tests/utils/FileIO/LibraryCalls.h"
#import "tests/utils/FileIO/PlatformCalls.h"
#include "tests/utils/FileIO/ScratchFolder.h"
#include "utils/FileIO/FileName.h"

#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

const char* const kNotUtf8 = "/tmp/a\xff";

class DiskPath : public PoolTest
{
};

// A folder with three takes in it, and a walk over them.
class DiskPathWalk : public PoolTest
{
  protected:
    DiskPathWalk() : m_path(m_folder.Path().c_str())
    {
        for (const char* pszName : {"one.wav", "two.wav", "three.wav"})
            m_folder.MakeFile(pszName);
    }

    ScratchFolder m_folder;
    CDiskPath m_path;
    CFileName m_file;
};

std::string NameOf(const CFileName& file) { return TakenText(file.GetNameCFString()); }

// The name parts that a walk gives.
std::multiset<std::string> Walk(CDiskPath& path, const char* pszExtension)
{
    std::multiset<std::string> names;
    CFileName file;
    for (bool fFound = path.FirstFile(&file, pszExtension); fFound; fFound = path.NextFile(&file))
        names.insert(NameOf(file));
    return names;
}

using Names = std::multiset<std::string>;

} // namespace

TEST_F(DiskPath, IsMadeFromAnyText)
{
    const std::string strPath = "/größe/日本/";
    EXPECT_EQ(CDiskPath().GetFullPathString(), "");
    EXPECT_EQ(CDiskPath(&strPath).GetFullPathString(), strPath);
    EXPECT_EQ(CDiskPath(strPath.c_str()).GetFullPathString(), strPath);
    EXPECT_EQ(CDiskPath(CFText(strPath.c_str())).GetFullPathString(), strPath);
}

TEST_F(DiskPath, OfNullTextIsEmpty)
{
    EXPECT_TRUE(CDiskPath(static_cast<const std::string*>(nullptr)).Empty());
    EXPECT_TRUE(CDiskPath(static_cast<const char*>(nullptr)).Empty());
    EXPECT_TRUE(CDiskPath(static_cast<const __CFString*>(nullptr)).Empty());
}

TEST_F(DiskPath, OfAStringThatDoesNotConvertIsEmpty)
{
    const LeakByDesign leak;
    EXPECT_TRUE(CDiskPath(CFText::WithoutUtf8()).Empty());
}

TEST_F(DiskPath, FreesTheArrayThatItConvertsThrough)
{
    LibraryCallScope calls;
    const CFText text("/dir");
    const CDiskPath path(static_cast<const __CFString*>(text));
    EXPECT_EQ(gLibraryCalls.nArraysMade, 1);
    EXPECT_EQ(gLibraryCalls.nArraysFreed, 1);
}

TEST_F(DiskPath, HasNoVirtualOperations) { EXPECT_FALSE(std::is_polymorphic_v<CDiskPath>); }

TEST_F(DiskPath, ComparesByteForByte)
{
    EXPECT_TRUE(CDiskPath("/a/b") == CDiskPath("/a/b"));
    EXPECT_FALSE(CDiskPath("/a/b") == CDiskPath("/a/b/"));
    EXPECT_FALSE(CDiskPath("/a/b") == CDiskPath("/a/B"));
    EXPECT_FALSE(CDiskPath("/a/b") == CDiskPath("/a/./b"));
    EXPECT_TRUE(CDiskPath() == CDiskPath(""));
}

TEST_F(DiskPath, IsEmptyWithoutCharacters)
{
    EXPECT_TRUE(CDiskPath().Empty());
    EXPECT_FALSE(CDiskPath("/").Empty());
}

TEST_F(DiskPath, SetAssignsThePath)
{
    CDiskPath path("/old");
    const std::string strNew = "/new";
    path.Set(&strNew);
    EXPECT_EQ(path.GetFullPathString(), "/new");
    path.Set(nullptr);
    EXPECT_TRUE(path.Empty());
}

TEST_F(DiskPath, AssignmentTakesThePathAndGivesTheObject)
{
    const CDiskPath source("/source");
    CDiskPath target("/target");
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(target.GetFullPathString(), "/source");
    EXPECT_EQ(source.GetFullPathString(), "/source");
}

TEST_F(DiskPath, GivesItsPathAsAStringOfTheCallers)
{
    EXPECT_EQ(TakenText(CDiskPath("/größe/日本").GetFullPathCFString()), "/größe/日本");
}

TEST_F(DiskPath, ThatIsNotUtf8HasNoPlatformString)
{
    EXPECT_EQ(CDiskPath(kNotUtf8).GetFullPathCFString(), nullptr);
}

TEST_F(DiskPath, ExistsIfThereIsAnItemOfAnyKind)
{
    const ScratchFolder folder;
    EXPECT_TRUE(CDiskPath(folder.Path().c_str()).Exists());
    EXPECT_TRUE(CDiskPath(folder.Path("").c_str()).Exists());
    EXPECT_TRUE(CDiskPath(folder.MakeFile("file").c_str()).Exists());
    EXPECT_TRUE(CDiskPath(folder.MakeFolder("größe 日本").c_str()).Exists());
    EXPECT_FALSE(CDiskPath(folder.Path("missing").c_str()).Exists());
    EXPECT_FALSE(CDiskPath().Exists());
}

TEST_F(DiskPath, ThatIsNotUtf8DoesNotExist) { EXPECT_FALSE(CDiskPath(kNotUtf8).Exists()); }

TEST_F(DiskPath, ExistsDrainsAPoolOfItsOwn)
{
    CDiskPath path("/tmp");
    EXPECT_EQ(ObjectsLeftBy([&] { path.Exists(); }), 0);
}

TEST_F(DiskPath, DirDeleteOfAnEmptyPathIsZeroAndRemovesNothing)
{
    LibraryCallScope calls;
    EXPECT_EQ(CDiskPath().DirDelete(), 0);
    EXPECT_EQ(gLibraryCalls.nRemoves, 0);
}

TEST_F(DiskPath, DirDeleteRemovesAnEmptyDirectory)
{
    const ScratchFolder folder;
    LibraryCallScope calls;
    CDiskPath path(folder.MakeFolder("dir").c_str());
    EXPECT_EQ(path.DirDelete(), 0);
    EXPECT_EQ(gLibraryCalls.nRemoves, 1);
    EXPECT_FALSE(path.Exists());
}

TEST_F(DiskPath, DirDeleteClearsNothingFirst)
{
    const ScratchFolder folder;
    folder.MakeFolder("dir");
    folder.MakeFile("dir/file");
    CDiskPath path(folder.Path("dir").c_str());
    EXPECT_EQ(path.DirDelete(), -1);
    EXPECT_TRUE(std::filesystem::exists(folder.Path("dir/file")));
}

TEST_F(DiskPath, DirDeleteOfAMissingDirectoryFailsInSilence)
{
    const ScratchFolder folder;
    const CapturedStderr captured;
    EXPECT_EQ(CDiskPath(folder.Path("missing").c_str()).DirDelete(), -1);
    EXPECT_EQ(captured.Text(), "");
}

TEST_F(DiskPath, TemporaryDirectoryIsNewAndStaysUntilDeleted)
{
    CDiskPath first = CDiskPath::MakeTemporaryDirectory();
    CDiskPath second = CDiskPath::MakeTemporaryDirectory();
    EXPECT_TRUE(std::filesystem::is_directory(first.GetFullPathString()));
    EXPECT_TRUE(std::filesystem::is_directory(second.GetFullPathString()));
    EXPECT_FALSE(first == second);
    EXPECT_EQ(first.DirDelete(), 0);
    EXPECT_EQ(second.DirDelete(), 0);
    EXPECT_FALSE(first.Exists());
}

TEST_F(DiskPath, TemporaryDirectoryLiesInThePlatformsUnderItsTemplate)
{
    const ScratchFolder folder;
    const std::string strBase = folder.MakeFolder("größe 日本");
    const TemporaryDirectoryScope base([NSString stringWithUTF8String:strBase.c_str()]);
    LibraryCallScope calls;
    const std::string strPath = CDiskPath::MakeTemporaryDirectory().GetFullPathString();
    EXPECT_EQ(gLibraryCalls.strTemplate, strBase + "/TarvnXXXXXX");
    EXPECT_EQ(strPath.size(), gLibraryCalls.strTemplate.size());
    EXPECT_EQ(strPath.substr(0, strPath.size() - 6), strBase + "/Tarvn");
    EXPECT_TRUE(std::filesystem::is_directory(strPath));
    EXPECT_EQ(gLibraryCalls.nLastArraySize, strPath.size() + 10);
    EXPECT_EQ(gLibraryCalls.nArraysMade, gLibraryCalls.nArraysFreed);
}

TEST_F(DiskPath, TemporaryDirectoryFallsBackToTmp)
{
    const TemporaryDirectoryScope base(nil);
    LibraryCallScope calls;
    CDiskPath path = CDiskPath::MakeTemporaryDirectory();
    EXPECT_EQ(gLibraryCalls.strTemplate, "/tmp/TarvnXXXXXX");
    EXPECT_TRUE(path.Exists());
    EXPECT_EQ(path.DirDelete(), 0);
}

TEST_F(DiskPath, TemporaryDirectoryThatCannotBeMadeIsAnEmptyPath)
{
    LibraryCallScope calls;
    gLibraryCalls.fFailTemporary = true;
    const CapturedStderr captured;
    EXPECT_TRUE(CDiskPath::MakeTemporaryDirectory().Empty());
    EXPECT_EQ(captured.Text(), "");
    EXPECT_EQ(gLibraryCalls.nArraysMade, gLibraryCalls.nArraysFreed);
}

TEST_F(DiskPath, TemporaryDirectoryDrainsAPoolOfItsOwn)
{
    CDiskPath path;
    EXPECT_EQ(ObjectsLeftBy([&] { path = CDiskPath::MakeTemporaryDirectory(); }), 0);
    EXPECT_EQ(path.DirDelete(), 0);
}

TEST_F(DiskPathWalk, GivesEachFileWithTheExtensionOnce)
{
    m_folder.MakeFile("four.aif");
    m_folder.MakeFile("fivewav");
    m_folder.MakeFile("six.wav.bak");
    EXPECT_EQ(Walk(m_path, "wav"), (Names{"one.wav", "two.wav", "three.wav"}));
}

TEST_F(DiskPathWalk, ComparesTheExtensionExactly)
{
    m_folder.MakeFile("LOUD.WAV");
    EXPECT_EQ(Walk(m_path, "WAV"), Names{"LOUD.WAV"});
    EXPECT_EQ(Walk(m_path, "Wav"), Names{});
    EXPECT_EQ(Walk(m_path, ".wav"), Names{});
    EXPECT_EQ(Walk(m_path, "*"), Names{});
}

TEST_F(DiskPathWalk, WithAnEmptyExtensionGivesEntriesThatHaveNone)
{
    m_folder.MakeFile("plain");
    m_folder.MakeFolder("sub");
    EXPECT_EQ(Walk(m_path, ""), (Names{"plain", "sub"}));
}

TEST_F(DiskPathWalk, DescendsAndKeepsTheSubdirectoryInTheName)
{
    m_folder.MakeFolder("sub/deep");
    m_folder.MakeFile("sub/deep/take.aif");
    ASSERT_TRUE(m_path.FirstFile(&m_file, "aif"));
    EXPECT_EQ(NameOf(m_file), "sub/deep/take.aif");
    EXPECT_EQ(m_file.GetFullPath(), m_folder.Path("sub/deep/take.aif"));
    EXPECT_TRUE(m_file == CFileName(&m_path, "sub/deep/take.aif"));
    EXPECT_TRUE(m_file.Exists());
    EXPECT_FALSE(m_path.NextFile(&m_file));
}

TEST_F(DiskPathWalk, TakesADirectoryWithTheExtensionForAMatch)
{
    m_folder.MakeFolder("session.aif");
    EXPECT_EQ(Walk(m_path, "aif"), Names{"session.aif"});
}

TEST_F(DiskPathWalk, GivesUtf8Names)
{
    m_folder.MakeFile("größe 日本.äöü");
    EXPECT_EQ(Walk(m_path, "äöü"), Names{"größe 日本.äöü"});
}

TEST_F(DiskPathWalk, TakesAPathWithATrailingSlash)
{
    CDiskPath path(m_folder.Path("").c_str());
    ASSERT_TRUE(path.FirstFile(&m_file, "wav"));
    EXPECT_TRUE(m_file.Exists());
}

TEST_F(DiskPathWalk, EndsWithTheFileUntouched)
{
    m_file = CFileName("/kept/file");
    EXPECT_FALSE(m_path.FirstFile(&m_file, "aif"));
    EXPECT_EQ(m_file.GetFullPath(), "/kept/file");

    while (m_path.FirstFile(&m_file, "wav") && m_path.NextFile(&m_file) && m_path.NextFile(&m_file))
    {
        const std::string strLast = m_file.GetFullPath();
        EXPECT_FALSE(m_path.NextFile(&m_file));
        EXPECT_EQ(m_file.GetFullPath(), strLast);
        return;
    }
    FAIL() << "three files were not found";
}

TEST_F(DiskPathWalk, OfAMissingDirectoryFindsNothingInSilence)
{
    CDiskPath path(m_folder.Path("missing").c_str());
    m_file = CFileName("/kept/file");
    const CapturedStderr captured;
    EXPECT_FALSE(path.FirstFile(&m_file, "wav"));
    EXPECT_FALSE(path.FirstFile(&m_file, ""));
    EXPECT_EQ(captured.Text(), "");
    EXPECT_EQ(m_file.GetFullPath(), "/kept/file");
}

TEST_F(DiskPathWalk, OfAFileOrNoPathFindsNothing)
{
    CDiskPath file(m_folder.Path("one.wav").c_str());
    EXPECT_FALSE(file.FirstFile(&m_file, "wav"));
    EXPECT_FALSE(CDiskPath().FirstFile(&m_file, "wav"));
}

TEST_F(DiskPathWalk, OfTextsThatAreNotUtf8FindsNothing)
{
    CDiskPath path(kNotUtf8);
    EXPECT_FALSE(path.FirstFile(&m_file, "wav"));
    EXPECT_FALSE(m_path.FirstFile(&m_file, "\xff"));
    EXPECT_FALSE(m_path.FirstFile(&m_file, nullptr));
}

TEST_F(DiskPathWalk, NextFileWithoutAWalkIsFalse)
{
    m_file = CFileName("/kept/file");
    EXPECT_FALSE(m_path.NextFile(&m_file));
    Walk(m_path, "wav");
    EXPECT_FALSE(m_path.NextFile(&m_file));
    EXPECT_FALSE(m_path.FirstFile(&m_file, "aif"));
    EXPECT_FALSE(m_path.NextFile(&m_file));
    EXPECT_EQ(m_file.GetFullPath(), "/kept/file");
}

TEST_F(DiskPathWalk, FirstFileStartsOver)
{
    ASSERT_TRUE(m_path.FirstFile(&m_file, "wav"));
    ASSERT_TRUE(m_path.NextFile(&m_file));
    EXPECT_EQ(Walk(m_path, "wav").size(), 3u);
}

TEST_F(DiskPathWalk, CopyOfAWalkingPathIsIdle)
{
    ASSERT_TRUE(m_path.FirstFile(&m_file, "wav"));
    CDiskPath copy(m_path);
    EXPECT_TRUE(copy == m_path);
    EXPECT_FALSE(copy.NextFile(&m_file));
    EXPECT_TRUE(m_path.NextFile(&m_file));
    EXPECT_TRUE(m_path.NextFile(&m_file));
    EXPECT_FALSE(m_path.NextFile(&m_file));
}

TEST_F(DiskPathWalk, AssignmentEndsTheTargetsWalk)
{
    ASSERT_TRUE(m_path.FirstFile(&m_file, "wav"));
    m_path = CDiskPath(m_folder.Path().c_str());
    EXPECT_FALSE(m_path.NextFile(&m_file));
}

TEST_F(DiskPathWalk, AssignmentOfItselfEndsTheWalkToo)
{
    ASSERT_TRUE(m_path.FirstFile(&m_file, "wav"));
    const CDiskPath& same = m_path;
    m_path = same;
    EXPECT_EQ(m_path.GetFullPathString(), m_folder.Path());
    EXPECT_FALSE(m_path.NextFile(&m_file));
}

TEST_F(DiskPathWalk, AssignmentLeavesTheSourcesWalkAlone)
{
    ASSERT_TRUE(m_path.FirstFile(&m_file, "wav"));
    CDiskPath target;
    target = m_path;
    EXPECT_FALSE(target.NextFile(&m_file));
    EXPECT_TRUE(m_path.NextFile(&m_file));
}

TEST_F(DiskPathWalk, SetKeepsTheWalkOnTheOldDirectoryAndGivesTheNewPath)
{
    ASSERT_TRUE(m_path.FirstFile(&m_file, "wav"));
    Names names{NameOf(m_file)};
    const std::string strNew = "/new/path";
    m_path.Set(&strNew);
    while (m_path.NextFile(&m_file))
    {
        names.insert(NameOf(m_file));
        EXPECT_EQ(m_file.GetFullPath(), "/new/path/" + NameOf(m_file));
    }
    EXPECT_EQ(names, (Names{"one.wav", "two.wav", "three.wav"}));
}

TEST_F(DiskPathWalk, LivesPastThePoolThatItWasStartedIn)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    ASSERT_TRUE(m_path.FirstFile(&m_file, "wav"));
    [pool drain];
    pool = [[NSAutoreleasePool alloc] init];
    EXPECT_TRUE(m_path.NextFile(&m_file));
    [pool drain];
    EXPECT_TRUE(m_path.NextFile(&m_file));
    EXPECT_FALSE(m_path.NextFile(&m_file));
}

TEST_F(DiskPathWalk, LeavesWhatItObtainsInTheCallersPool)
{
    EXPECT_GT(ObjectsLeftBy([&] { m_path.FirstFile(&m_file, "wav"); }), 0);
}

// What a walk holds, replaced by objects that tell of their release.

namespace
{

std::vector<std::string> gReleased;
NSFileManager* gManager = nil;
NSArray* gEntries = nil;

} // namespace

@interface ReleaseTellingEnumerator : NSObject
{
    NSUInteger m_nNext;
}
@end

@implementation ReleaseTellingEnumerator

- (id)nextObject
{
    return [gEntries count] > m_nNext ? [gEntries objectAtIndex:m_nNext++] : nil;
}

- (oneway void)release
{
    gReleased.push_back("enumerator");
    [super release];
}

@end

@interface ReleaseTellingString : NSString
@end

@implementation ReleaseTellingString

- (NSUInteger)length
{
    return 3;
}

- (unichar)characterAtIndex:(NSUInteger)index
{
    return static_cast<unichar>("wav"[index]);
}

- (oneway void)release
{
    gReleased.push_back("extension");
    [super release];
}

@end

@interface ReleaseTellingManager : NSFileManager
@end

@implementation ReleaseTellingManager

- (oneway void)release
{
    gReleased.push_back("manager");
    [super release];
}

@end

namespace
{

id EnumerateTellingly(id self, SEL, NSString*)
{
    gManager = self;
    object_setClass(self, [ReleaseTellingManager class]);
    return [[[ReleaseTellingEnumerator alloc] init] autorelease];
}

id MakeTellingString(Class, SEL, const char* psz)
{
    if (std::string(psz) == "wav")
        return [[[ReleaseTellingString alloc] init] autorelease];
    return [[[NSString alloc] initWithBytes:psz
                                     length:std::strlen(psz)
                                   encoding:NSUTF8StringEncoding] autorelease];
}

class DiskPathRecord : public PoolTest
{
  protected:
    DiskPathRecord()
        : m_enumerator(class_getInstanceMethod([NSFileManager class], @selector(enumeratorAtPath:)),
                       EnumerateTellingly),
          m_string(class_getClassMethod([NSString class], @selector(stringWithUTF8String:)),
                   MakeTellingString)
    {
        gEntries = [[NSArray alloc] initWithObjects:@"one.wav", @"two.wav", nil];
        gManager = nil;
    }

    ~DiskPathRecord() override { [gEntries release]; }

    // Starts a walk in a pool of its own, so that the record's references are the last ones.
    void Start(CDiskPath& path)
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        EXPECT_TRUE(path.FirstFile(&m_file, "wav"));
        [pool drain];
        gReleased.clear();
    }

    MethodScope m_enumerator;
    MethodScope m_string;
    CFileName m_file;
};

const std::vector<std::string> kInOrder = {"enumerator", "manager", "extension"};

} // namespace

TEST_F(DiskPathRecord, HasAFileManagerOfItsOwn)
{
    NSFileManager* shared = [NSFileManager defaultManager];
    CDiskPath path("/dir");
    Start(path);
    EXPECT_NE(gManager, nil);
    EXPECT_NE(gManager, shared);
    EXPECT_EQ([gManager retainCount], 1u);
}

TEST_F(DiskPathRecord, IsDroppedInOrderByFirstFile)
{
    CDiskPath path("/dir");
    Start(path);
    EXPECT_TRUE(path.FirstFile(&m_file, "wav"));
    EXPECT_EQ(gReleased, kInOrder);
}

TEST_F(DiskPathRecord, IsDroppedInOrderByFirstFileThatFindsNothing)
{
    CDiskPath path("/dir");
    [gEntries release];
    gEntries = [[NSArray alloc] init];
    gReleased.clear();
    EXPECT_FALSE(path.FirstFile(&m_file, "wav"));
    EXPECT_EQ(gReleased, kInOrder);
}

TEST_F(DiskPathRecord, IsDroppedInOrderAtTheEndOfTheWalk)
{
    CDiskPath path("/dir");
    Start(path);
    EXPECT_TRUE(path.NextFile(&m_file));
    EXPECT_TRUE(gReleased.empty());
    EXPECT_FALSE(path.NextFile(&m_file));
    EXPECT_EQ(gReleased, kInOrder);
}

TEST_F(DiskPathRecord, IsDroppedInOrderByAssignment)
{
    CDiskPath path("/dir");
    Start(path);
    path = CDiskPath("/other");
    EXPECT_EQ(gReleased, kInOrder);
}

TEST_F(DiskPathRecord, IsDroppedInOrderByDestruction)
{
    auto pPath = std::make_unique<CDiskPath>("/dir");
    Start(*pPath);
    pPath.reset();
    EXPECT_EQ(gReleased, kInOrder);
}

TEST_F(DiskPathRecord, StaysThroughCopiesAndSet)
{
    CDiskPath path("/dir");
    Start(path);
    const std::string strNew = "/new";
    {
        CDiskPath copy(path);
        CDiskPath assigned;
        assigned = path;
        path.Set(&strNew);
    }
    EXPECT_TRUE(gReleased.empty());
}
