// How long the view kept the host's main thread, and what for.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>

namespace Tarvane
{

enum class StallCause
{
    Opening,
    Menu,        ///< it is filled as it opens
    TrackChoice, ///< the view hands it to the plug-in
    Toggle,      ///< the view asks the plug-in to arm
    Arming,      ///< the armed state, the tracks and the words are read anew
    Delivery,
    Progress,
    Drawing,
    Closing,
};

constexpr std::size_t kStallCauses = 9;

/// Main thread.
class CStalls
{
public:
    using Duration = std::chrono::steady_clock::duration;

    /// The main thread is kept for the life of this value. One within another is the outer's.
    class CStay
    {
    public:
        CStay(CStalls& stalls, StallCause cause);
        ~CStay();
        CStay(const CStay&) = delete;
        CStay& operator=(const CStay&) = delete;

    private:
        CStalls& m_stalls;
        const StallCause m_cause;
        const std::chrono::steady_clock::time_point m_start;
    };

    void Add(StallCause cause, Duration length);

    /// Lines with their line ends; causes that there were.
    std::string Tell() const;

    /// "total" and "longest", and both again with a "count" for each cause that there was, in
    /// milliseconds.
    nlohmann::json Describe() const;

private:
    struct Sum
    {
        int nCount = 0;
        Duration total{};
        Duration longest{};

        void Add(const Sum& other);
    };

    Sum Whole() const;

    std::array<Sum, kStallCauses> m_sums;
    int m_nDepth = 0;
};

} // namespace Tarvane
