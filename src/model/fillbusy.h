#pragma once

#include <array>

/// The busy flags of the two grid fills, and the one protocol that sets and clears them. A data
/// message is taken only while neither flag is set; taking it sets both, the hierarchy fill clears
/// its own when it hands over to the summary fill, and the summary fill sets and clears its own.
///
/// Flags are only ever held by a Scope, so every way out of a fill (its end, an early return, an
/// error) clears what it set: a stuck flag would make the controller drop every later message.
class FillBusy
{
public:
    enum Fill : int
    {
        SummaryFill = 0,
        HierarchyFill = 1,
    };

    FillBusy() = default;
    FillBusy(const FillBusy &) = delete;
    FillBusy &operator=(const FillBusy &) = delete;

    [[nodiscard]] bool isSet(Fill fill) const noexcept { return m_set[fill]; }
    [[nodiscard]] bool any() const noexcept { return m_set[SummaryFill] || m_set[HierarchyFill]; }

    /// Sets one flag for its lifetime. end() clears it early; handOver() leaves it set for a fill
    /// that clears it itself (the data message's flags, once its fills were raised).
    class [[nodiscard]] Scope
    {
    public:
        Scope(FillBusy &busy, Fill fill) : m_busy(&busy), m_fill(fill) { busy.m_set[fill] = true; }
        ~Scope() { end(); }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

        void end() noexcept
        {
            if (m_busy)
                m_busy->m_set[m_fill] = false;
            m_busy = nullptr;
        }
        void handOver() noexcept { m_busy = nullptr; }

    private:
        FillBusy *m_busy;
        Fill m_fill;
    };

    /// Clears both flags: for a controller driven without views (tools, tests), which plays the
    /// fills' part itself.
    void clear() noexcept { m_set = {false, false}; }

private:
    std::array<bool, 2> m_set{};
};
