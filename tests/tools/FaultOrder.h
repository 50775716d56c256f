#pragma once
// What is to go wrong in a program that runs with the library of faulty calls preloaded. It lies in
// a file that the test and the program both map; the program finds it by an environment variable.
#include <atomic>

namespace pw::test {

constexpr const char* kFaultOrderVariable = "PAGEWICK_FAULT_ORDER";

enum FaultCall : unsigned {
    kOpen = 1,
    kCreate = 2,  ///< opening with the wish to write
    kRead = 4,
    kWrite = 8,
    kSync = 16,
    kRename = 32,
    kClose = 64,
    kRemove = 128,
    kTruncate = 256
};

struct FaultOrder {
    enum class Kind {
        Error,     ///< the call does nothing and fails with the error
        Short,     ///< half of the bytes only
        Interrupt  ///< every other call fails with EINTR, its repetition works
    };

    char under[256] = "";  ///< native path of a folder: calls on what lies elsewhere don't count
    unsigned calls = 0;    ///< those that count
    int at = 0;            ///< number of the first one that fails, from 1; 0 for none
    bool onwards = false;  ///< all behind it fail as well
    int error = 0;
    Kind kind = Kind::Error;
    std::atomic<int> seen = 0;
    std::atomic<int> struck = 0;
    std::atomic<unsigned> struckCall = 0;  ///< what the first one was
};

}  // namespace pw::test
