// SPDX-License-Identifier: MIT
// Runs the one test of the room that the first argument names; the others go to QtTest.
#include "TestRoom.h"

#include <cstdio>
#include <string>
#include <vector>

#undef main

namespace {

const RoomTest *&head()
{
    static const RoomTest *last = nullptr;
    return last;
}

std::string stem(const std::string &path)
{
    const std::string::size_type slash = path.rfind('/');
    const std::string file = slash == std::string::npos ? path : path.substr(slash + 1);
    return file.substr(0, file.find('.'));
}

const RoomTest *find(const std::string &name)
{
    const RoomTest *test = RoomTest::first();
    while (test && test->name != name) {
        test = test->next;
    }
    return test;
}

int refuse(const char *program, const char *name)
{
    if (name) {
        std::fprintf(stderr, "%s has no test '%s'\n", program, name);
    }
    std::fprintf(stderr, "usage: %s TEST [QTTEST-ARGUMENT…]\nTEST is one of:\n", program);
    std::vector<std::string> names;
    for (const RoomTest *test = RoomTest::first(); test; test = test->next) {
        names.push_back(test->name);
    }
    std::sort(names.begin(), names.end());
    for (const std::string &each : names) {
        std::fprintf(stderr, "    %s\n", each.c_str());
    }
    return 2;
}

} // namespace

RoomTest::RoomTest(const char *sourceFile, Main runTest)
    : name(stem(sourceFile))
    , run(runTest)
    , next(head())
{
    head() = this;
}

const RoomTest *RoomTest::first()
{
    return head();
}

int main(int argc, char **argv)
{
    const RoomTest *const test = argc > 1 ? find(argv[1]) : nullptr;
    if (!test) {
        return refuse(argv[0], argc > 1 ? argv[1] : nullptr);
    }
    std::vector<char *> rest(argv, argv + argc + 1); // with the null pointer at its end
    rest.erase(rest.begin() + 1);
    return test->run(argc - 1, rest.data());
}
