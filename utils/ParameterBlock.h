#pragma once

#include "utils/Parameter.h"
#include "utils/ParameterList.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

class CFileName;
struct __CFData;

/// Told how far a load has come. Called on the thread that loads.
class CProgress
{
public:
    virtual ~CProgress() = default;

    /// nBytes: the bytes consumed so far. True asks that the load stop.
    virtual bool Update(unsigned long nBytes) = 0;
};

/// An ordered list of parameters that is itself a parameter, so that blocks nest to any depth.
/// Names need not be unique: look-ups take the first that fits. A class saves itself by adding
/// values to a block and loads itself by finding them again.
///
/// A block owns its parameters. An entry is null where a load met an unknown type tag; null entries
/// are skipped and not counted by every operation.
///
/// A parameter of a class derived outside is asked for its own GetSize and Save; a copy of it is of
/// its tag's class. Blocks of such classes that lie in one another are gone through by recursion.
///
/// No lock: one thread at a time uses a tree. No operation else recurses on the call stack,
/// whatever the depth of the tree, and each costs time in proportion to the bytes or parameters it
/// goes through.
///
/// Two flat forms: CreateBlock and LoadBlock below, names inline; and the binary session, where the
/// names are pooled. A session, as a file or in memory, without padding or alignment,
/// little-endian:
///
///     0    25  "[TNE Binary Session File]"
///     25   1   0
///     26   4   format version, 100; readers take any
///     30   4   bytes of the name table, terminators included
///     34   4   number of names in the table
///     38   ..  the names, each ended by a zero byte; the n-th has token n, token 0 is the empty
///     name
///     ..   ..  the root block's record, up to the end
///
/// A saved or loaded session leaves its tokens in the parameters. CreateBlock then writes tokens
/// too, and what it writes needs the session's name table to be read.
class CParameterBlock : public CParameter
{
public:
    static constexpr int kType = 6;

    using iterator = CParameterList::iterator;
    using SessionNames = std::vector<std::pair<std::string, int>>;

    /// Results of the session operations.
    enum : int
    {
        kSessionDone = 0,
        kSessionNoMemory = 2,
        kSessionBadRecords = 2033, ///< or the progress sink asked to stop
        kSessionFileFailed = 2035, ///< the file could not be written or read; nothing to write
        kSessionBadHeader = 7534
    };

    /// What LoadHeader returns for a bad header.
    static constexpr unsigned int kBadHeader = 0xFFFFFFFF;

    static const std::string m_strBinaryHeader;

    CParameterList m_vParameters;
    CProgress* m_pProgress = nullptr;   ///< Not owned.
    unsigned long m_nProgressTotal = 0; ///< The bytes that a load is measured against.

    CParameterBlock() : CParameter(kType) {}
    /// A root that will load something large. pProgress may be null and must live as long as loads
    /// into this block or into the blocks that it has loaded.
    CParameterBlock(CProgress* pProgress, unsigned long nTotal)
        : CParameter(kType), m_pProgress(pProgress), m_nProgressTotal(nTotal)
    {
    }
    /// A deep copy under another name, without a token. A null source is an empty one.
    CParameterBlock(const char* pName, const CParameterBlock* pSource);
    /// A deep copy of name, token and contents: alone among the parameter classes a block copies
    /// its token, and it is kept so on purpose. A source that is no block has no contents.
    explicit CParameterBlock(const CParameter* pSource);
    ~CParameterBlock() override;

    /// Deletes every parameter. The progress fields and the capacity of the list stay.
    void Clear() noexcept;

    /// Each appends a parameter, also where the name is taken already. A null name is the empty
    /// name. A block is copied in depth; the caller goes on owning *pValue.
    void AddParameter(const char* pName, const char* pValue);
    void AddParameter(const char* pName, int nValue);
    void AddParameter(const char* pName, double dValue);
    void AddParameter(const char* pName, unsigned long long nValue);
    void AddParameter(const char* pName, long long nValue);
    void AddParameter(const char* pName, TGL::FileIdType idValue);
    void AddParameter(const char* pName, const CParameterBlock* pValue);
    void AddParameter(const char* pName, bool bValue);
    void AddParameter(const char* pName, float fValue);

    /// Each gives the value of the first parameter of exactly this name and type, and true; or the
    /// default and false. Types are never converted: an int is a miss for the double look-up, which
    /// goes on to later parameters of the name.
    ///
    /// A string's null default leaves *pOut as it was. A file id's default is "no file". A block is
    /// found itself, not copied, and stays owned here; its default is null.
    bool FindParameter(const char* pName, std::string* pOut, const char* pDefault) const;
    bool FindParameter(const char* pName, int* pOut, int nDefault) const;
    bool FindParameter(const char* pName, double* pOut, double dDefault) const;
    bool FindParameter(const char* pName, unsigned long long* pOut,
                       unsigned long long nDefault) const;
    bool FindParameter(const char* pName, long long* pOut, long long nDefault) const;
    bool FindParameter(const char* pName, TGL::FileIdType* pOut) const;
    bool FindParameter(const char* pName, CParameterBlock** ppOut) const;
    bool FindParameter(const char* pName, bool* pOut, bool bDefault) const;
    bool FindParameter(const char* pName, float* pOut, float fDefault) const;

    /// Walk the nested blocks of one name: the first one, then the next one behind *pIter. On a
    /// miss both targets stay as they were. Adding to the block or clearing it ends such a walk.
    bool FindFirstParameter(const char* pName, CParameterBlock** ppOut, iterator* pIter);
    bool FindNextParameter(const char* pName, CParameterBlock** ppOut, iterator* pIter);

    /// Clears this block, then appends a copy of every parameter of the source; the source may lie
    /// inside this block. Copies of values have no token, copies of nested blocks keep theirs; no
    /// copy has progress fields. A block copied onto itself is left empty. A null source is an
    /// empty one.
    void CopyParameters(const CParameterBlock* pSource);

    /// Copies the contents alone: this block keeps its own name. It differs from the form below on
    /// purpose.
    CParameterBlock& operator=(CParameterBlock& other);
    /// Copies name and contents. A source that is no block has no contents.
    CParameter& operator=(CParameter& other) override;

    unsigned long GetSize() const override;
    unsigned long Save(unsigned long nSize, unsigned char* pDest) const override;
    /// -1 where LoadBlock gives it.
    long Load(std::vector<std::string>* pNames, unsigned long nSize,
              unsigned char* pSource) override;

    /// The flat block: u32 count of parameters, then for each its u32 type tag and its flat form.
    /// The block's own name is not part of it. The caller frees the result with delete[].
    unsigned char* CreateBlock(unsigned long* pSize) const;

    /// Replaces the contents by what CreateBlock has written, and returns the bytes consumed. -1: a
    /// type tag does not lie inside the buffer, a nested block failed or the progress sink asked to
    /// stop; the entries read so far stay. pNames as in CParameter::Load.
    long LoadBlock(std::vector<std::string>* pNames, unsigned long nSize, void* pSource);

    /// Writes the tree as a session file. kSessionFileFailed also for a tree without any name; no
    /// file is touched then. A write that the disk cuts short goes unnoticed here: a caller that
    /// cannot bear that reads the file back. Gives every parameter of the tree a new token.
    int SaveBinarySession(CFileName* pFile);

    /// Writes the tree into a mutable CFData and returns the bytes of the session, 0 when nothing
    /// was written: no parameter has a name, or there is no memory. The data object gets 32 bytes
    /// longer than that; they are zero and not part of the session. Gives every parameter of the
    /// tree a new token.
    unsigned long SaveBinarySessionToMemory(__CFData* pData);

    /// Replaces the contents by a session file's. An empty file changes nothing and is no failure.
    int LoadBinarySession(CFileName* pFile);

    /// The same from memory; a null pointer or no bytes change nothing and are no failure. After
    /// kSessionBadHeader the block is as it was; after kSessionBadRecords the entries read so far
    /// stay.
    int LoadBinarySessionFromMemory(unsigned char* pData, unsigned int nSize);

    /// Counts the uses of every non-empty name below this block, this block's own not included.
    void TokenizeNames(std::map<std::string, int>& map) const;
    /// Gives every parameter below this block its token from the map, 0 for the empty name.
    void SetTokens(std::map<std::string, int>& map);

    /// The bytes in front of the root record. A null table counts as no names.
    static unsigned long GetSizeOfHeader(const SessionNames* pNames);
    /// Writes them at pDest, where GetSizeOfHeader() bytes have room, and returns their number;
    /// nSize is not looked at.
    static unsigned long SaveHeader(unsigned long nSize, const SessionNames* pNames,
                                    unsigned char* pDest);
    /// Appends the empty name and the names of the table to *pNames and returns the offset of the
    /// root record, or kBadHeader.
    static unsigned int LoadHeader(unsigned int nSize, std::vector<std::string>* pNames,
                                   unsigned char* pSource);
    /// The order of the name table: the name used most comes first.
    static bool IntCmp(const std::pair<std::string, int>& a, const std::pair<std::string, int>& b);
};
