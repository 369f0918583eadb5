// What a plug-in makes of a process that claims to hold its view.
#include "fuzz/Require.h"
#include "fuzz/view/Packets.h"
#include "plugin/view/ViewService.h"
#include "signal/CaptureCore.h"

#include <cstdlib>
#include <filesystem>

using namespace Tarvane;

namespace
{

// Nothing is played, so nothing is written; the folder is for what should be all the same.
CCaptureCore& Core()
{
    static CCaptureCore* const pCore = []
    {
        const auto folder = std::filesystem::temp_directory_path() / "tarvane-fuzz-captures";
        ::setenv("XDG_STATE_HOME", folder.c_str(), 1);
        CCaptureSettings settings;
        settings.captureFolder = folder;
        return new CCaptureCore(settings);
    }();
    return *pCore;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    CViewService service(Core());
    for (const auto& packet : Packets(pBytes, nSize))
    {
        const auto frame = DecodeFrame(packet.data(), packet.size(), FrameSender::View);
        if (!frame)
            break;
        Require(EncodeFrame(*frame) == packet);
        std::optional<CFrame> reply;
        if (!service.Take(*frame, reply))
            break;
        const bool fAsks = frame->kind == FrameKind::Get || frame->kind == FrameKind::Info ||
                           frame->kind == FrameKind::Set;
        Require(reply.has_value() == fAsks);
        if (!reply)
            continue;
        Require(reply->nSerial == frame->nSerial);
        const auto answer = EncodeFrame(*reply);
        Require(DecodeFrame(answer.data(), answer.size(), FrameSender::PlugIn) == reply);
    }
    return 0;
}
