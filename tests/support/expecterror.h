#pragma once

#include "common/dlverror.h"

#include <QString>
#include <gtest/gtest.h>

/// Expects body to throw DLVError with the given number; returns the error's description (empty
/// when nothing or something else was thrown) so that callers can check what it names.
template <typename F> QString expectError(F &&body, qint32 number)
{
    try {
        body();
        ADD_FAILURE() << "no error, expected " << number;
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), number) << e.what();
        return e.description();
    }
    return {};
}

/// The number of the DLVError that body throws, 0 when it throws none.
template <typename F> qint32 thrownNumber(F &&body)
{
    try {
        body();
    } catch (const DLVError &e) {
        return e.number();
    }
    return 0;
}
