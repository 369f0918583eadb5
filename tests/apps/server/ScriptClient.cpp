#include "tests/apps/server/ScriptClient.h"

#include "utils/UnicodeText.h"

#include <gtest/gtest.h>

#include <cstring>

namespace TarvaneTest
{

namespace
{

std::optional<std::string> TextParameter(const AppleEvent& reply, AEKeyword nKey)
{
    DescType nType = 0;
    Size nBytes = 0;
    if (AESizeOfParam(&reply, nKey, &nType, &nBytes) != noErr)
        return std::nullopt;
    if (nType != DescType(typeUnicodeText))
        return std::nullopt;
    EXPECT_EQ(nBytes % 2, 0);
    std::u16string units(static_cast<std::size_t>(nBytes) / 2, u'\0');
    EXPECT_EQ(AEGetParamPtr(&reply, nKey, typeUnicodeText, nullptr, units.data(), nBytes, nullptr),
              noErr);
    return Tarvane::Utf8FromUtf16(units);
}

} // namespace

CScriptAnswer SendScript(std::string_view strScript, SInt32 nTicks)
{
    const std::u16string units = Tarvane::Utf16FromUtf8(strScript);
    std::string bytes(units.size() * sizeof(char16_t), '\0');
    std::memcpy(bytes.data(), units.data(), bytes.size());
    return SendBytes(typeUnicodeText, bytes, nTicks);
}

CScriptAnswer SendBytes(DescType nType, const std::string& bytes, SInt32 nTicks, AESendMode nMode)
{
    const OSType nSignature = 'TkNe';
    AEDesc target{};
    AppleEvent event{};
    AppleEvent reply{};
    EXPECT_EQ(AECreateDesc(typeApplSignature, &nSignature, sizeof nSignature, &target), noErr);
    EXPECT_EQ(AECreateAppleEvent('TKNE', 'LCmd', &target, kAutoGenerateReturnID, kAnyTransactionID,
                                 &event),
              noErr);
    if (nType != 0)
    {
        EXPECT_EQ(AEPutParamPtr(&event, keyDirectObject, nType, bytes.data(),
                                static_cast<Size>(bytes.size())),
                  noErr);
    }

    CScriptAnswer answer;
    answer.nStatus = AESend(&event, &reply, nMode, kAENormalPriority, nTicks, nullptr, nullptr);
    if (answer.nStatus == noErr && nMode == kAEWaitReply)
    {
        answer.result = TextParameter(reply, 'Rslt');
        answer.error = TextParameter(reply, 'Errr');
    }
    AEDisposeDesc(&target);
    AEDisposeDesc(&event);
    AEDisposeDesc(&reply);
    return answer;
}

} // namespace TarvaneTest
