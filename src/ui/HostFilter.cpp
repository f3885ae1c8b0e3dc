#include "ui/HostFilter.h"

#include <QLocale>

namespace velmora {

namespace {

/// Elsewhere lower case does not depend on the language.
bool hasDotlessI(const QLocale& locale) {
    return locale.language() == QLocale::Turkish || locale.language() == QLocale::Azerbaijani;
}

QString folded(const QString& text) {
    const QLocale locale;
    const QString lower = hasDotlessI(locale) ? locale.toLower(text) : text;
    return lower.normalized(QString::NormalizationForm_C).toCaseFolded();
}

}  // namespace

void HostFilter::setSearch(const QString& search) {
    search_ = folded(search);
    if (search_.isEmpty()) {
        texts_ = {};
    }
}

std::vector<const SSHHost*> HostFilter::found(const std::vector<SSHHost>& hosts) {
    std::vector<const SSHHost*> found;
    found.reserve(hosts.size());
    if (!isActive()) {
        for (const SSHHost& host : hosts) {
            found.push_back(&host);
        }
        return found;
    }
    texts_.resize(hosts.size());
    for (std::size_t position = 0; position < hosts.size(); ++position) {
        const SSHHost& host = hosts[position];
        Texts& texts = texts_[position];
        if (texts.name != host.name || texts.hostname != host.hostname) {
            texts = {host.name, host.hostname, folded(QString::fromStdString(host.name)),
                     folded(QString::fromStdString(host.hostname))};
        }
        if (contains(texts)) {
            found.push_back(&host);
        }
    }
    return found;
}

bool HostFilter::contains(const Texts& texts) const {
    return texts.foldedName.contains(search_) || texts.foldedHostname.contains(search_);
}

}  // namespace velmora
