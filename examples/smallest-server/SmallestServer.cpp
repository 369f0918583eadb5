// The smallest server that keeps every MUST of the script contract (docs/integrators.md): two
// tracks in memory. The document lives in Lua, and so do the functions that scripts call; each
// script has variables of its own.
#include <Carbon/Carbon.h>
#include <CoreFoundation/CoreFoundation.h>
#include <TarvanePlatform/Application.h>

#include <cstdio>
#include <lua.hpp>
#include <sndfile.h>
#include <string>
#include <vector>

namespace
{

constexpr char szDocument[] = R"(
local tracks, regions = { 'Dialogue', 'ADR' }, { {}, {} }
local nOffset = 2 -- seconds by which this timeline is ahead of the host's
local api = { error = error, string = string, type = type }

function api.SelectScriptDocument() return true end
function api.SelectAudioSuiteDocument() return false end
function api.GetTrackCount() return #tracks end
function api.GetTrackID(nTrack)
    return tracks[nTrack + 1] and nTrack + 1 or error('there is no track ' .. nTrack)
end
function api.GetTrackName(idTrack) return tracks[idTrack] end
function api.GetLinkSMPTEOffset() return nOffset end
function api.MoveDisplayToPosition(dPosition) return dPosition + 0 end

function api.CheckForDuplicateRegion(idTrack, strPath, nPosition, nStart, nEnd)
    local strAudio, nRate = ReadAudio(strPath, nStart, nEnd)
    local nBegin = nOffset * nRate + nPosition + nStart
    for _, region in ipairs(regions[idTrack]) do
        if region.strAudio == strAudio and region.nStart == nBegin then return 1 end
    end
    return 0
end
function api.AddAudioRegion(idTrack, strPath, fSelect, fMute, nPosition, nStart, nEnd)
    local strAudio = ReadAudio(strPath, nStart, nEnd)
    table.insert(regions[idTrack], { strAudio = strAudio, idTrack = idTrack,
        nStart = nPosition + nStart, nEnd = nPosition + nEnd })
end

function api.GetRegionCount(idTrack) return #regions[idTrack] end
function api.GetRegionID(idTrack, nRegion) return regions[idTrack][nRegion + 1] end
function api.GetRegionStartPosition(region) return region.nStart end
function api.GetRegionEndPosition(region) return region.nEnd end
function api.DeleteRegion(region)
    for nPlace, other in ipairs(regions[region.idTrack]) do
        if other == region then return table.remove(regions[region.idTrack], nPlace) end
    end
end
function api.GetMarkerTrackID(idTrack) return idTrack end
function api.CountMarkerAreas() return 0 end

-- What the script printed, and its error, if any. A script that changes and fails changes nothing,
-- and has no result.
function Run(strScript)
    local printed, kept = {}, {}
    for nTrack, list in ipairs(regions) do kept[nTrack] = table.move(list, 1, #list, 1, {}) end
    local own = setmetatable({}, { __index = api })
    function own.print(...)
        local words = table.pack(...)
        for n = 1, words.n do words[n] = tostring(words[n]) end
        table.insert(printed, table.concat(words, '\t') .. '\n')
    end
    local fnScript, strError = load(strScript, '=script', 't', own)
    local fDone = false
    if fnScript then fDone, strError = pcall(fnScript) end
    local fChanges = strScript:find('AddAudioRegion') or strScript:find('DeleteRegion')
    if not fDone and fChanges then regions, printed = kept, nil end
    return printed and table.concat(printed), not fDone and tostring(strError) or nil
end
)";

// ReadAudio(strPath, nStart, nEnd): the samples, as bytes, and the rate. Fails when they are not
// all there.
int ReadAudio(lua_State* pLua)
{
    const char* szPath = luaL_checkstring(pLua, 1);
    const lua_Integer nStart = luaL_checkinteger(pLua, 2);
    const lua_Integer nEnd = luaL_checkinteger(pLua, 3);
    SF_INFO info{};
    SNDFILE* pFile = sf_open(szPath, SFM_READ, &info);
    if (pFile == nullptr)
        return luaL_error(pLua, "%s: %s", szPath, sf_strerror(nullptr));
    if (nStart < 0 || nEnd <= nStart || nEnd > info.frames)
    {
        sf_close(pFile);
        return luaL_error(pLua, "%s does not go from %d to %d", szPath, int(nStart), int(nEnd));
    }
    const auto nBytes = static_cast<std::size_t>(nEnd - nStart) * info.channels * sizeof(float);
    luaL_Buffer buffer;
    char* pBytes = luaL_buffinitsize(pLua, &buffer, nBytes);
    sf_seek(pFile, nStart, SEEK_SET);
    sf_readf_float(pFile, reinterpret_cast<float*>(pBytes), nEnd - nStart);
    sf_close(pFile);
    luaL_pushresultsize(&buffer, nBytes);
    lua_pushinteger(pLua, info.samplerate);
    return 2;
}

// Empty when there is no such text, or it cannot be read.
std::string TextIn(const AppleEvent* pEvent)
{
    Size nBytes = 0;
    AESizeOfParam(pEvent, keyDirectObject, nullptr, &nBytes);
    std::vector<UniChar> units(static_cast<std::size_t>(nBytes) / sizeof(UniChar));
    AEGetParamPtr(pEvent, keyDirectObject, typeUnicodeText, nullptr, units.data(), nBytes, nullptr);
    const auto nUnits = static_cast<CFIndex>(units.size());
    const CFStringRef strText =
        CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(), nUnits);
    const CFIndex nRoom = CFStringGetMaximumSizeForEncoding(nUnits, kCFStringEncodingUTF8) + 1;
    std::string strUtf8(static_cast<std::size_t>(nRoom), '\0');
    CFStringGetCString(strText, strUtf8.data(), nRoom, kCFStringEncodingUTF8);
    CFRelease(strText);
    strUtf8.resize(strUtf8.find('\0'));
    return strUtf8;
}

void PutText(AppleEvent* pReply, AEKeyword nKey, const char* szText)
{
    CFStringRef strText =
        CFStringCreateWithCString(kCFAllocatorDefault, szText, kCFStringEncodingUTF8);
    if (strText == nullptr) // a script may print any bytes
        strText =
            CFStringCreateWithCString(kCFAllocatorDefault, szText, kCFStringEncodingISOLatin1);
    std::vector<UniChar> units(static_cast<std::size_t>(CFStringGetLength(strText)));
    CFStringGetCharacters(strText, {0, CFStringGetLength(strText)}, units.data());
    CFRelease(strText);
    AEPutParamPtr(pReply, nKey, typeUnicodeText, units.data(),
                  static_cast<Size>(units.size() * sizeof(UniChar)));
}

OSErr HandleCommand(const AppleEvent* pEvent, AppleEvent* pReply, void* pState)
{
    auto* pLua = static_cast<lua_State*>(pState);
    lua_getglobal(pLua, "Run");
    lua_pushstring(pLua, TextIn(pEvent).c_str());
    if (lua_pcall(pLua, 1, 2, 0) != LUA_OK)
        return errAEEventFailed;
    if (!lua_isnil(pLua, -2))
        PutText(pReply, 'Rslt', lua_tostring(pLua, -2));
    if (!lua_isnil(pLua, -1))
        PutText(pReply, 'Errr', lua_tostring(pLua, -1));
    lua_settop(pLua, 0);
    return noErr;
}

} // namespace

int main()
{
    lua_State* pLua = luaL_newstate();
    luaL_openlibs(pLua);
    lua_register(pLua, "ReadAudio", &ReadAudio);
    if (luaL_dostring(pLua, szDocument) != LUA_OK)
        return 1;
    TarvaneSetApplicationSignature('TkNe');
    if (AEInstallEventHandler('TKNE', 'LCmd', &HandleCommand, pLua, false) != noErr)
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    for (;;)
        TarvaneHandleEvents(1e9);
}
