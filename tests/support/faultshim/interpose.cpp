// SPDX-License-Identifier: LGPL-2.1-or-later
//
// A library for LD_PRELOAD that makes a program die or fail at a chosen place, without a branch for it in the
// program. Tests use it through FaultShim (support/faultshim.h), which sets these variables:
//
//   FENNEL_FAULT_PROGRAM      name of the program to act in; children of another name run as usual
//   FENNEL_FAULT_FILES        durable files: patterns of names, separated by ":"
//                             ("*.db:*.db-journal:*.db-wal" by default)
//   FENNEL_FAULT_KINDS        which durable steps count, separated by ",":
//                             write, sync, truncate, remove, rename (all by default)
//   FENNEL_FAULT_STEPS        file that gets a line for each durable step: number, kind, name of the file
//   FENNEL_FAULT_KILL_AT      number of the durable step before which the process gets SIGKILL
//   FENNEL_FAULT_DATABASE     pattern of the name of the database whose statements count
//   FENNEL_FAULT_STATEMENTS   file that gets a line for each of its sqlite3_step calls: number, SQL
//   FENNEL_FAULT_FAIL_AT      number of the sqlite3_step call that fails, and does nothing else
//   FENNEL_FAULT_FAIL_WITH    IOERR (default) or FULL
//
// A run without KILL_AT and FAIL_AT gives the lists; their lengths are the numbers worth trying. The step of
// the number is recorded before the process dies, so the list of a killed run ends with it. Both counters
// start at 1 in each process.
//
// SIGKILL leaves what was written to the kernel, as a crash of the process does; a loss of power is not
// shown.

#include <algorithm>
#include <atomic>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

struct sqlite3;
struct sqlite3_stmt;

namespace {

constexpr int SqliteIoError = 10;
constexpr int SqliteFull = 13;

std::string variable(const char *name, const char *otherwise = "")
{
    const char *value = std::getenv(name);
    return value ? value : otherwise;
}

std::vector<std::string> split(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::string::size_type from = 0;
    while (from <= text.size()) {
        const std::string::size_type to = std::min(text.find(separator, from), text.size());
        if (to > from)
            parts.push_back(text.substr(from, to - from));
        from = to + 1;
    }
    return parts;
}

struct Plan
{
    bool active;
    std::vector<std::string> files;
    std::vector<std::string> kinds;
    std::string stepList;
    long killAt;
    std::string database;
    std::string statementList;
    long failAt;
    int failure;

    static const Plan &instance()
    {
        static const Plan plan = read();
        return plan;
    }

private:
    static Plan read()
    {
        const std::string program = variable("FENNEL_FAULT_PROGRAM");
        Plan plan;
        plan.active = program.empty() || program == program_invocation_short_name;
        plan.files = split(variable("FENNEL_FAULT_FILES", "*.db:*.db-journal:*.db-wal"), ':');
        plan.kinds = split(variable("FENNEL_FAULT_KINDS", "write,sync,truncate,remove,rename"), ',');
        plan.stepList = variable("FENNEL_FAULT_STEPS");
        plan.killAt = std::atol(variable("FENNEL_FAULT_KILL_AT").c_str());
        plan.database = variable("FENNEL_FAULT_DATABASE");
        plan.statementList = variable("FENNEL_FAULT_STATEMENTS");
        plan.failAt = std::atol(variable("FENNEL_FAULT_FAIL_AT").c_str());
        plan.failure = variable("FENNEL_FAULT_FAIL_WITH") == "FULL" ? SqliteFull : SqliteIoError;
        return plan;
    }
};

template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/** SQLite may have been loaded for a plugin alone, where RTLD_NEXT does not look. */
template <typename Function> Function sqliteFunction(const char *name)
{
    if (const auto function = next<Function>(name))
        return function;
    void *library = dlopen("libsqlite3.so.0", RTLD_LAZY | RTLD_NOLOAD);
    return library ? reinterpret_cast<Function>(dlsym(library, name)) : nullptr;
}

const char *baseName(const char *path)
{
    const char *slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

/** Appends with bare system calls: the list is no durable step itself. */
void append(const std::string &file, const std::string &line)
{
    if (file.empty())
        return;
    const int savedError = errno;
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor >= 0) {
        [[maybe_unused]] const long written = syscall(SYS_write, descriptor, line.data(), line.size());
        ::close(descriptor);
    }
    errno = savedError;
}

bool contains(const std::vector<std::string> &list, const char *text)
{
    for (const std::string &entry : list) {
        if (entry == text)
            return true;
    }
    return false;
}

bool isDurableFile(const char *name)
{
    for (const std::string &pattern : Plan::instance().files) {
        if (fnmatch(pattern.c_str(), name, 0) == 0)
            return true;
    }
    return false;
}

void countStep(const char *kind, const char *path)
{
    static std::atomic<long> counter { 0 };
    const Plan &plan = Plan::instance();
    const char *name = baseName(path);
    if (!plan.active || !contains(plan.kinds, kind) || !isDurableFile(name))
        return;
    const long number = ++counter;
    append(plan.stepList, std::to_string(number) + ' ' + kind + ' ' + name + '\n');
    if (number == plan.killAt)
        ::kill(::getpid(), SIGKILL);
}

void countStep(const char *kind, int descriptor)
{
    struct stat status;
    if (!Plan::instance().active || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return;
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    char path[PATH_MAX];
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path - 1);
    if (length <= 0)
        return;
    path[length] = '\0';
    countStep(kind, path);
}

bool isWatchedDatabase(sqlite3_stmt *statement)
{
    static const auto handleOf = sqliteFunction<sqlite3 *(*)(sqlite3_stmt *)>("sqlite3_db_handle");
    static const auto fileOf =
        sqliteFunction<const char *(*)(sqlite3 *, const char *)>("sqlite3_db_filename");
    const Plan &plan = Plan::instance();
    if (!plan.active || plan.database.empty() || !statement)
        return false;
    const char *file = fileOf(handleOf(statement), "main");
    return file && fnmatch(plan.database.c_str(), baseName(file), 0) == 0;
}

bool statementFails(sqlite3_stmt *statement)
{
    static std::atomic<long> counter { 0 };
    static const auto textOf = sqliteFunction<const char *(*)(sqlite3_stmt *)>("sqlite3_sql");
    // SQLite steps statements of its own, which have no text, through the same function.
    const char *text = textOf(statement);
    if (!text)
        return false;
    const long number = ++counter;
    std::string line = std::to_string(number) + ' ' + text;
    std::replace(line.begin(), line.end(), '\n', ' ');
    append(Plan::instance().statementList, line + '\n');
    return number == Plan::instance().failAt;
}

} // namespace

// Each interposed function counts, then passes the call on.
extern "C" {

ssize_t write(int descriptor, const void *bytes, size_t count)
{
    static const auto real = next<decltype(&write)>("write");
    countStep("write", descriptor);
    return real(descriptor, bytes, count);
}

ssize_t pwrite(int descriptor, const void *bytes, size_t count, off_t offset)
{
    static const auto real = next<decltype(&pwrite)>("pwrite");
    countStep("write", descriptor);
    return real(descriptor, bytes, count, offset);
}

ssize_t pwrite64(int descriptor, const void *bytes, size_t count, off64_t offset)
{
    static const auto real = next<decltype(&pwrite64)>("pwrite64");
    countStep("write", descriptor);
    return real(descriptor, bytes, count, offset);
}

int fsync(int descriptor)
{
    static const auto real = next<decltype(&fsync)>("fsync");
    countStep("sync", descriptor);
    return real(descriptor);
}

int fdatasync(int descriptor)
{
    static const auto real = next<decltype(&fdatasync)>("fdatasync");
    countStep("sync", descriptor);
    return real(descriptor);
}

int ftruncate(int descriptor, off_t length) noexcept
{
    static const auto real = next<int (*)(int, off_t)>("ftruncate");
    countStep("truncate", descriptor);
    return real(descriptor, length);
}

int ftruncate64(int descriptor, off64_t length) noexcept
{
    static const auto real = next<int (*)(int, off64_t)>("ftruncate64");
    countStep("truncate", descriptor);
    return real(descriptor, length);
}

int unlink(const char *path) noexcept
{
    static const auto real = next<int (*)(const char *)>("unlink");
    countStep("remove", path);
    return real(path);
}

int rename(const char *from, const char *to) noexcept
{
    static const auto real = next<int (*)(const char *, const char *)>("rename");
    countStep("rename", to);
    return real(from, to);
}

int sqlite3_step(sqlite3_stmt *statement)
{
    static const auto real = sqliteFunction<int (*)(sqlite3_stmt *)>("sqlite3_step");
    if (isWatchedDatabase(statement) && statementFails(statement))
        return Plan::instance().failure;
    return real(statement);
}

} // extern "C"
