#include "DamagedFile.h"
#include "MutatedBytes.h"
#include "ProtectedFolder.h"
#include "ProtectedSettingsBaseline.h"

#include <gtest/gtest.h>

namespace orvex {

TEST(MutatedBaselineFile, IsRefusedOrReadAndStays) {
    const test::TemporaryFolder folder;
    const ProtectedSettingsBaselineStore store(QUrl::fromLocalFile(folder.path()));
    const auto q = [](const char* text) { return QString::fromUtf8(text); };
    const ProtectedSettingsSnapshot snapshot{
        .timestamp = {795000000.5},
        .rootPaths = {q("/etc/ppd"), q("/gone")},
        .files = {test::directory(q("/etc/ppd")), test::symbolicLink(q("/etc/ppd/link"), "target"),
                  test::unreadable(q("/etc/ppd/卷"), q("why")), test::regularFile(q("/etc/ppd/w.ppd"), "content"),
                  test::missing(q("/gone"))}};
    store.save(snapshot);
    test::Mutations mutations(20260104);
    test::DamagedFile file(folder, q("settings-preservation-baseline.json"));
    file.expectRefusedOrRead([&](const QByteArray& good) { return mutations.ofJson(good); },
                             [&] { static_cast<void>(store.load()); }, {[&] { store.save(snapshot); }});
    constexpr int some = 500; // so that both outcomes are tried
    EXPECT_GT(file.refusedCount(), some);
    EXPECT_GT(file.readCount(), some);
}

} // namespace orvex
