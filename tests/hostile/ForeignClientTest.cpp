// Whoever is on the bus and means harm: calls that are no events, floods, forged replies and
// signals, and others that want the server's name. The server refuses what it has to, changes
// nothing, and serves the next client.
#include "platform/gnustep/AppleEvents/Wire.h"
#include "tests/apps/server/ServerFixture.h"
#include "tests/hostile/HostileTable.h"
#include "tests/platform/AppleEvents/ForeignPeer.h"

#include <cerrno>
#include <functional>

using namespace AppleEvents;
using AppleEventTests::ConnectToBus;

namespace TarvaneTest
{
namespace
{

constexpr std::uint64_t kAnyMicroseconds = 60'000'000;
constexpr UInt32 kClass = 'TKNE';
constexpr UInt32 kCommand = 'LCmd';

using Filling = std::function<void(sd_bus_message*)>;

struct Call
{
    std::string strWhat;
    Filling fill;
};

void FillEvent(sd_bus_message* call, UInt32 nClass, UInt32 nId, const Parameters& parameters)
{
    ASSERT_GE(sd_bus_message_append(call, "uu", nClass, nId), 0);
    ASSERT_GE(AppendParameters(call, parameters), 0);
}

Parameters WithScript(const std::string& strScript)
{
    Parameters parameters;
    Bytes bytes;
    for (const char c : strScript)
    {
        bytes.push_back(static_cast<unsigned char>(c));
        bytes.push_back(0);
    }
    parameters[keyDirectObject] = {typeUnicodeText, bytes};
    return parameters;
}

void FillNested(sd_bus_message* call, int nDepth)
{
    for (int n = 1; n < nDepth; ++n)
        ASSERT_GE(sd_bus_message_open_container(call, 'v', "v"), 0) << n;
    ASSERT_GE(sd_bus_message_append(call, "v", "u", 1U), 0);
    for (int n = 1; n < nDepth; ++n)
        ASSERT_GE(sd_bus_message_close_container(call), 0) << n;
}

class ForeignClient : public ServerFixture
{
protected:
    ForeignClient()
    {
        sd_bus_creds* creds = nullptr;
        EXPECT_GE(sd_bus_get_name_creds(m_client.get(), m_strName.c_str(), SD_BUS_CREDS_UNIQUE_NAME,
                                        &creds),
                  0);
        const char* szUnique = nullptr;
        EXPECT_GE(sd_bus_creds_get_unique_name(creds, &szUnique), 0);
        m_strUnique = szUnique;
        sd_bus_creds_unref(creds);
    }

    // The same server answers whoever means well, and its session is as it was.
    ~ForeignClient() override
    {
        EXPECT_EQ(SendScript("print(GetUpdateCount())\n").result, "0\n");
        EXPECT_TRUE(m_server->IsRunning()) << m_server->ErrorOutput();
        EXPECT_GE(m_nTried, 1);
    }

    MessageRef NewCall(const std::string& strPath, const std::string& strInterface,
                       const std::string& strMember, sd_bus* bus = nullptr) const
    {
        sd_bus_message* call = nullptr;
        EXPECT_GE(sd_bus_message_new_method_call(bus ? bus : m_client.get(), &call,
                                                 m_strName.c_str(), strPath.c_str(),
                                                 strInterface.c_str(), strMember.c_str()),
                  0)
            << strPath << ' ' << strInterface << ' ' << strMember;
        return MessageRef(call);
    }
    MessageRef NewSend(sd_bus* bus = nullptr) const
    {
        return NewCall(kObjectPath, kInterface, kSendMember, bus);
    }

    // A change that no other way than the right one may make.
    Parameters Change() const { return WithScript(Add(0)); }

    // The error's name, or the status; empty for what was done.
    static std::string Refusal(sd_bus* bus, sd_bus_message* call)
    {
        sd_bus_error error = SD_BUS_ERROR_NULL;
        sd_bus_message* received = nullptr;
        const int result = sd_bus_call(bus, call, kAnyMicroseconds, &error, &received);
        const MessageRef reply(received);
        std::string strRefusal = error.name ? error.name : "";
        sd_bus_error_free(&error);
        if (result < 0)
            return strRefusal.empty() ? "result " + std::to_string(result) : strRefusal;
        std::int16_t nStatus = 0;
        if (sd_bus_message_read(received, "n", &nStatus) < 0 || nStatus == 0)
            return "";
        return "status " + std::to_string(nStatus);
    }

    void ExpectRefused(const std::string& strWhat, const MessageRef& call)
    {
        ++m_nTried;
        const std::string strRefusal = Refusal(m_client.get(), call.get());
        m_table.Note(strWhat, "refused", strRefusal);
        EXPECT_THAT(strRefusal, testing::AnyOf(testing::StartsWith("org.freedesktop.DBus.Error."),
                                               testing::StartsWith("status ")))
            << strWhat;
        EXPECT_NE(strRefusal, "org.freedesktop.DBus.Error.NoReply") << strWhat;
    }

    // Sent without an answer being awaited.
    void Send(const std::string& strWhat, sd_bus* bus, const MessageRef& message)
    {
        ++m_nTried;
        m_table.Note(strWhat, "survived", "sent");
        EXPECT_GE(sd_bus_send(bus, message.get(), nullptr), 0) << strWhat;
    }

    void ExpectAnswers() { EXPECT_EQ(SendScript("print(1)\n").result, "1\n"); }

    std::vector<Call> NoEvents() const
    {
        std::vector<Call> calls{
            {"no arguments", [](sd_bus_message*) {}},
            {"a text", [](sd_bus_message* call) { sd_bus_message_append(call, "s", "print(1)"); }},
            {"one number", [](sd_bus_message* call) { sd_bus_message_append(call, "u", 1U); }},
            {"two numbers",
             [](sd_bus_message* call) { sd_bus_message_append(call, "uu", kClass, kCommand); }},
            {"texts for bytes", [](sd_bus_message* call)
             { sd_bus_message_append(call, "uua(uus)", kClass, kCommand, 1, 1U, 2U, "print(1)"); }},
            {"a number behind", [](sd_bus_message* call)
             { sd_bus_message_append(call, "uua(uuay)u", kClass, kCommand, 0, 1U); }},
            {"signed numbers", [](sd_bus_message* call)
             { sd_bus_message_append(call, "iia(uuay)", int(kClass), int(kCommand), 0); }},
            {"wide numbers",
             [](sd_bus_message* call) {
                 sd_bus_message_append(call, "tta(uuay)", std::uint64_t{kClass},
                                       std::uint64_t{kCommand}, 0);
             }},
            {"a dictionary", [](sd_bus_message* call)
             { sd_bus_message_append(call, "uua{sv}", kClass, kCommand, 0); }},
            {"the parameters first", [](sd_bus_message* call)
             { sd_bus_message_append(call, "a(uuay)uu", 0, kClass, kCommand); }},
            {"a descriptor", [](sd_bus_message* call)
             { sd_bus_message_append(call, "uua(uuay)h", kClass, kCommand, 0, 0); }},
        };
        for (const int nDepth : {1, 2, 8, 31, 60})
            calls.push_back({"variants, " + std::to_string(nDepth) + " deep",
                             [nDepth](sd_bus_message* call) { FillNested(call, nDepth); }});
        for (const auto& [nClass, nId] :
             std::vector<std::pair<UInt32, UInt32>>{{0, 0},
                                                    {kClass, 0},
                                                    {0, kCommand},
                                                    {0xFFFFFFFF, 0xFFFFFFFF},
                                                    {kClass, 'lcmd'},
                                                    {kCommand, kClass},
                                                    {'aevt', 'quit'},
                                                    {'aevt', 'oapp'},
                                                    {'core', 'getd'}})
            calls.push_back(
                {"an event of class " + std::to_string(nClass) + ", id " + std::to_string(nId),
                 [this, nClass = nClass, nId = nId](sd_bus_message* call)
                 { FillEvent(call, nClass, nId, Change()); }});
        calls.push_back(
            {"no parameters", [](sd_bus_message* call) { FillEvent(call, kClass, kCommand, {}); }});
        calls.push_back({"20,000 empty parameters", [](sd_bus_message* call)
                         {
                             Parameters many;
                             for (UInt32 nKey = 1; nKey <= 20'000; ++nKey)
                                 many[nKey] = {typeUnicodeText, {}};
                             FillEvent(call, kClass, kCommand, many);
                         }});
        for (const DescType nType : {DescType(0), DescType(typeChar), DescType(0xFFFFFFFF)})
            for (const std::size_t nBytes : {0U, 1U, 65'535U})
                calls.push_back({std::to_string(nBytes) + " bytes of type " + std::to_string(nType),
                                 [=](sd_bus_message* call)
                                 {
                                     Parameters parameters;
                                     parameters[keyDirectObject] = {nType, Bytes(nBytes, 0xD8)};
                                     FillEvent(call, kClass, kCommand, parameters);
                                 }});
        calls.push_back(
            {"a script over the limit", [](sd_bus_message* call)
             {
                 Parameters parameters;
                 parameters[keyDirectObject] = {typeUnicodeText, Bytes(kMaximumEventBytes, 0x20)};
                 FillEvent(call, kClass, kCommand, parameters);
             }});
        return calls;
    }

    const std::string m_strName = BusNameForSignature('TkNe');
    const Child m_server = Start({"--session", m_strSession, "--track", "Vox"});
    const BusRef m_client = ConnectToBus();
    std::string m_strUnique;
    CHostileTable m_table;
    int m_nTried = 0;
};

TEST_F(ForeignClient, AtOtherPathsInterfacesAndMembersIsRefused)
{
    for (const std::string& strPath :
         {std::string(kObjectPath), std::string("/"), std::string("/org"),
          std::string("/org/tarvane"), std::string("/org/tarvane/AppleEvent/below"),
          std::string("/org/freedesktop/DBus"), "/" + std::string(5000, 'a')})
        for (const std::string& strInterface :
             {std::string(kInterface), std::string("org.tarvane"),
              std::string("org.freedesktop.DBus"), std::string("org.freedesktop.DBus.Properties")})
            for (const std::string& strMember :
                 {std::string(kSendMember), std::string("send"), std::string("Quit"),
                  std::string("Set"), std::string(255, 'm')})
            {
                if (strPath == kObjectPath && strInterface == kInterface &&
                    strMember == kSendMember)
                    continue;
                const MessageRef call = NewCall(strPath, strInterface, strMember);
                FillEvent(call.get(), kClass, kCommand, Change());
                ExpectRefused(Shown(strPath) + " " + strInterface + " " + Shown(strMember), call);
            }
}

TEST_F(ForeignClient, WithArgumentsThatAreNoScriptIsRefused)
{
    for (const Call& call : NoEvents())
    {
        const MessageRef message = NewSend();
        call.fill(message.get());
        ExpectRefused(call.strWhat, message);
    }
}

TEST_F(ForeignClient, ThatWantsNoAnswerDoesNoHarm)
{
    for (const Call& call : NoEvents())
    {
        const MessageRef message = NewSend();
        call.fill(message.get());
        sd_bus_message_set_expect_reply(message.get(), 0);
        Send(call.strWhat + ", no answer wanted", m_client.get(), message);
    }
    ExpectAnswers();
}

TEST_F(ForeignClient, ThatFloodsTheServerLeavesRoomForOthers)
{
    for (int n = 0; n < 200; ++n)
    {
        const MessageRef script = NewSend();
        FillEvent(script.get(), kClass, kCommand, WithScript("print(1)\n"));
        sd_bus_message_set_expect_reply(script.get(), 0);
        Send("a flood of scripts", m_client.get(), script);
        for (int nMore = 0; nMore < 4; ++nMore)
        {
            const MessageRef rubbish = NewSend();
            sd_bus_message_set_expect_reply(rubbish.get(), 0);
            Send("a flood of what is none", m_client.get(), rubbish);
        }
    }
    ExpectAnswers();
}

TEST_F(ForeignClient, ThatGoesWithManyCallsPendingDoesNoHarm)
{
    for (int nClient = 0; nClient < 10; ++nClient)
    {
        const BusRef client = ConnectToBus();
        for (int n = 0; n < 20; ++n)
        {
            const MessageRef call = NewSend(client.get());
            if (n % 2 == 0)
                FillEvent(call.get(), kClass, kCommand, WithScript("print(1)\n"));
            ++m_nTried;
            EXPECT_GE(sd_bus_call_async(client.get(), nullptr, call.get(), nullptr, nullptr, 0), 0);
        }
        m_table.Note("20 calls, and gone", "survived", "sent");
        EXPECT_GE(sd_bus_flush(client.get()), 0);
    }
    ExpectAnswers();
}

TEST_F(ForeignClient, ThatForgesRepliesIsNotBelieved)
{
    // Of the calls that the server has made or will make, each with a number of its own.
    for (std::uint64_t nSerial = 1; nSerial <= 100; ++nSerial)
        for (const bool fError : {false, true})
        {
            const MessageRef call = NewCall("/", "org.example.Any", "Any");
            ASSERT_GE(sd_bus_message_set_sender(call.get(), m_strUnique.c_str()), 0);
            ASSERT_GE(sd_bus_message_seal(call.get(), nSerial, 0), 0);
            sd_bus_message* made = nullptr;
            const sd_bus_error error =
                SD_BUS_ERROR_MAKE_CONST("org.freedesktop.DBus.Error.Disconnected", "forged");
            ASSERT_GE(fError ? sd_bus_message_new_method_error(call.get(), &made, &error)
                             : sd_bus_message_new_method_return(call.get(), &made),
                      0);
            const MessageRef reply(made);
            if (!fError)
            {
                // What RequestName answers to whoever came second.
                ASSERT_GE(sd_bus_message_append(made, "u", 3U), 0);
            }
            Send("a forged reply to call " + std::to_string(nSerial), m_client.get(), reply);
        }
    ExpectAnswers();
}

TEST_F(ForeignClient, ThatForgesSignalsOfTheBusIsNotBelieved)
{
    const auto forge = [this](const char* szPath, const char* szInterface, const char* szMember,
                              bool fToAll, const Filling& fill)
    {
        const BusRef client = ConnectToBus();
        sd_bus_message* made = nullptr;
        ASSERT_GE(sd_bus_message_new_signal(client.get(), &made, szPath, szInterface, szMember), 0);
        const MessageRef signal(made);
        if (!fToAll)
        {
            ASSERT_GE(sd_bus_message_set_destination(made, m_strUnique.c_str()), 0);
        }
        fill(made);
        Send(std::string("a forged ") + szMember, client.get(), signal);
        // The bus may end the connection of whoever speaks in its name.
        EXPECT_THAT(sd_bus_flush(client.get()),
                    testing::AnyOf(testing::Ge(0), -ENOTCONN, -ECONNRESET, -EPIPE))
            << szMember;
    };
    for (const bool fToAll : {false, true})
    {
        for (const char* szMember : {"NameLost", "NameAcquired"})
            forge("/org/freedesktop/DBus", "org.freedesktop.DBus", szMember, fToAll,
                  [this](sd_bus_message* signal)
                  { sd_bus_message_append(signal, "s", m_strName.c_str()); });
        forge("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged", fToAll,
              [this](sd_bus_message* signal) {
                  sd_bus_message_append(signal, "sss", m_strName.c_str(), m_strUnique.c_str(), "");
              });
        forge("/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", fToAll,
              [](sd_bus_message*) {});
        forge(kObjectPath, kInterface, kSendMember, fToAll,
              [this](sd_bus_message* signal) { FillEvent(signal, kClass, kCommand, Change()); });
    }
    ExpectAnswers();
}

TEST_F(ForeignClient, ThatWantsTheServersNameDoesNotGetIt)
{
    for (const std::uint64_t nFlags :
         {std::uint64_t{0}, std::uint64_t{SD_BUS_NAME_REPLACE_EXISTING},
          std::uint64_t{SD_BUS_NAME_QUEUE},
          std::uint64_t{SD_BUS_NAME_REPLACE_EXISTING | SD_BUS_NAME_QUEUE},
          std::uint64_t{SD_BUS_NAME_REPLACE_EXISTING | SD_BUS_NAME_QUEUE |
                        SD_BUS_NAME_ALLOW_REPLACEMENT}})
    {
        ++m_nTried;
        const BusRef impostor = ConnectToBus();
        const int result = sd_bus_request_name(impostor.get(), m_strName.c_str(), nFlags);
        m_table.Note("asks for the name, flags " + std::to_string(nFlags), "refused",
                     std::to_string(result));
        EXPECT_LT(result, 1) << nFlags;
        ExpectAnswers();
        EXPECT_LT(sd_bus_release_name(m_client.get(), m_strName.c_str()), 0);
    }
}

} // namespace
} // namespace TarvaneTest
