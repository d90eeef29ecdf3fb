#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>
#include <vector>

extern char** environ;

namespace tidewick::bench {

// Peak resident memory in bytes of one run of the program with `arguments`; −1 on failure.
inline qint64 peakMemory(const QString& program, const QStringList& arguments) {
    QList<QByteArray> args = {QFile::encodeName(program)};
    for (const QString& argument : arguments) {
        args.append(QFile::encodeName(argument));
    }
    std::vector<char*> argv;
    for (QByteArray& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        return -1;
    }
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) != pid) {
        return -1;
    }
    return qint64(usage.ru_maxrss) * 1024;
}

}  // namespace tidewick::bench
