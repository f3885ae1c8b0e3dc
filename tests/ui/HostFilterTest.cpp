#include "ui/HostFilter.h"

#include <QLocale>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SSHHost hostWith(const std::string& name, const std::string& hostname) {
    SSHHost host;
    host.name = name;
    host.hostname = hostname;
    return host;
}

class HostFilterTest : public testing::Test {
protected:
    ~HostFilterTest() override { QLocale::setDefault(before); }

    std::vector<std::string> found(const QString& search) {
        filter.setSearch(search);
        std::vector<std::string> names;
        for (const SSHHost* host : filter.found(hosts)) {
            names.push_back(host->name);
        }
        return names;
    }

    QLocale before;
    HostFilter filter;
    std::vector<SSHHost> hosts;
};

TEST_F(HostFilterTest, ASearchOfPRODFindsNamesAndHostnamesButNoTags) {
    hosts = {hostWith("prod-db", "10.0.0.1"), hostWith("db", "db.prod.internal"), hostWith("web", "web.example")};
    hosts[2].tags = "prod";
    hosts[2].username = "prod";
    hosts[2].forwardingRules.resize(1);
    hosts[2].forwardingRules[0].pacPatterns = "*.prod";
    EXPECT_THAT(found(QStringLiteral("PROD")), ElementsAre("prod-db", "db"));
}

TEST_F(HostFilterTest, AnEmptySearchFindsEveryHostInItsPlace) {
    hosts = {hostWith("b", ""), hostWith("a", ""), hostWith("", "")};
    EXPECT_THAT(found(QString()), ElementsAre("b", "a", ""));
    EXPECT_FALSE(filter.isActive());
}

TEST_F(HostFilterTest, DoesNotFindWhatStandsAcrossTwoFields) {
    hosts = {hostWith("web", "db")};
    EXPECT_THAT(found(QStringLiteral("webdb")), IsEmpty());
    EXPECT_THAT(found(QStringLiteral("b")), ElementsAre("web"));
}

TEST_F(HostFilterTest, TakesWhitespaceAsItIs) {
    hosts = {hostWith("my web", ""), hostWith("myweb", "")};
    EXPECT_THAT(found(QStringLiteral("y w")), ElementsAre("my web"));
    EXPECT_THAT(found(QStringLiteral(" ")), ElementsAre("my web"));
}

TEST_F(HostFilterTest, CaseAndComposedAccentsDoNotMatter) {
    hosts = {hostWith("ZÜRICH", ""), hostWith("Ζευς", "")};
    EXPECT_THAT(found(QStringLiteral("zürich")), ElementsAre("ZÜRICH"));
    EXPECT_THAT(found(QStringLiteral("zu\u0308rich")), ElementsAre("ZÜRICH"));
    EXPECT_THAT(found(QStringLiteral("zurich")), IsEmpty());
    EXPECT_THAT(found(QStringLiteral("ΖΕΥΣ")), ElementsAre("Ζευς"));
}

TEST_F(HostFilterTest, FollowsTheLanguage) {
    hosts = {hostWith("IZMIR", "")};
    QLocale::setDefault(QLocale(QLocale::English));
    EXPECT_THAT(found(QStringLiteral("izmir")), ElementsAre("IZMIR"));
    filter = {};
    QLocale::setDefault(QLocale(QLocale::Turkish));
    EXPECT_THAT(found(QStringLiteral("izmir")), IsEmpty());
    EXPECT_THAT(found(QStringLiteral("ızmır")), ElementsAre("IZMIR"));
}

TEST_F(HostFilterTest, SeesWhatHasChangedSinceTheLastSearch) {
    hosts = {hostWith("web", "a"), hostWith("db", "b"), hostWith("mail", "c")};
    EXPECT_THAT(found(QStringLiteral("db")), ElementsAre("db"));
    hosts[0].name = "web db";
    hosts[1].name = "x";
    hosts[2].hostname = "db";
    EXPECT_THAT(found(QStringLiteral("db")), ElementsAre("web db", "mail"));
    hosts.erase(hosts.begin());
    EXPECT_THAT(found(QStringLiteral("db")), ElementsAre("mail"));
}

}  // namespace
}  // namespace velmora
