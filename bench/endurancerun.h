#pragma once

/// Drives one live, initialised control through a long sequence of data messages of changing
/// shape (units appearing and vanishing, tables growing and shrinking, job types and classes
/// changing), with server-stopped messages and malformed messages in between, and prints what it
/// saw as JSON lines: memory after warm-up and at the end, the slowest refresh, and the counts of
/// accepted, dropped and reported messages.
class EnduranceRun
{
public:
    struct Options
    {
        int messages = 2000;
        int warmUp = 100;  ///< messages before the first memory reading
        unsigned seed = 7; ///< the same seed gives the same sequence
    };

    /// Returns the process exit status: 0 when memory stayed within 5 %, nothing was dropped and
    /// every malformed message was reported.
    static int run(const Options &options);
};
