#pragma once

#include <QFile>

#include <unistd.h>

// For tests of files the user may not read or write. Root ignores permission bits, so while a scope of
// this kind lives, a test run as root acts as "nobody"; anybody else acts as themselves, and the bits
// apply already. Only the effective ids change, for the whole process, and come back at the end.
class UnprivilegedUser final
{
public:
    static constexpr uid_t nobody = 65534;

    UnprivilegedUser()
        : m_wasRoot(::geteuid() == 0)
    {
        if (m_wasRoot)
            m_isActive = ::setegid(nobody) == 0 && ::seteuid(nobody) == 0;
    }
    ~UnprivilegedUser()
    {
        if (m_wasRoot) {
            [[maybe_unused]] const int user = ::seteuid(0);
            [[maybe_unused]] const int group = ::setegid(0);
        }
    }
    UnprivilegedUser(const UnprivilegedUser &) = delete;
    UnprivilegedUser &operator=(const UnprivilegedUser &) = delete;

    // False when root could not become nobody: permission bits would then prove nothing.
    bool isEffective() const { return !m_wasRoot || m_isActive; }

    // Lets the unprivileged user into `folder` and write there, as its owner would.
    static bool openFolder(const QString &folder)
    {
        return QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther
                                                 | QFile::WriteOther | QFile::ExeOther);
    }

private:
    bool m_wasRoot = false;
    bool m_isActive = false;
};
