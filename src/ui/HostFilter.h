#pragma once

#include "model/SSHHost.h"

#include <QString>

#include <string>
#include <vector>

namespace velmora {

/// What the user is looking for among the hosts: those whose name or hostname contains a text, whatever the case of the
/// letters in the user's language and however accents are composed. An empty text is in every host.
class HostFilter final {
public:
    void setSearch(const QString& search);
    [[nodiscard]] bool isActive() const { return !search_.isEmpty(); }

    /// The hosts that are found, in their order. Points into the list that was passed.
    [[nodiscard]] std::vector<const SSHHost*> found(const std::vector<SSHHost>& hosts);

private:
    /// A host's texts, and what is compared of them.
    struct Texts {
        std::string name;
        std::string hostname;
        QString foldedName;
        QString foldedHostname;
    };

    [[nodiscard]] bool contains(const Texts& texts) const;

    QString search_;            ///< folded
    std::vector<Texts> texts_;  ///< by position in the list of the last search, so that a keystroke need not fold again
};

}  // namespace velmora
