#pragma once
// Where the build has put what tests need. Native paths, written by the build into one small file
// of its own: on all command lines they would part the compiler caches of checkouts.
namespace pw::test {

extern const char* const kTestData;            ///< tests/data
extern const char* const kCommandLineProgram;  ///< pagewick-cli
extern const char* const kFaultyCalls;         ///< the library of tools/faults.cpp

}  // namespace pw::test

#define PAGEWICK_TEST_DATA ::pw::test::kTestData
#define PAGEWICK_CLI ::pw::test::kCommandLineProgram
