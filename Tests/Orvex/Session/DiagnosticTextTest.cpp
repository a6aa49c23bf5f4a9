#include "DiagnosticText.h"

#include "InChinese.h"
#include "PrinterFixtures.h"
#include "SessionFixture.h"

#include <QDir>

namespace orvex {
namespace {

/// The report of a session that knows nothing, and of one that knows everything.
class Diagnostics : public test::SessionTest {
protected:
    [[nodiscard]] std::string report() const {
        return diagnosticText(*model, {816246300.0}).toStdString(); // 2026-11-13 07:05:00 UTC
    }

    /// The whole report: the line of the program, and these.
    [[nodiscard]] static std::string expected(const char* lines) {
        return std::string("orvex " ORVEX_VERSION "\n") + lines;
    }

    void knowEverything() {
        import({picture(QStringLiteral("a.png"), 240, 160, 10)});
        PrinterReadings printers;
        printers.printers = {test::printer(QStringLiteral("W9400"))};
        printers.printers[0].summary = QStringLiteral("disabled since noon -\nOut of canvas");
        printers.printers[0].options.append({.keyword = QStringLiteral("CutMedia"),
                                             .label = QStringLiteral("Cutting %1"),
                                             .choices = {QStringLiteral("PrinterDefault"), QStringLiteral("None")},
                                             .defaultChoice = QStringLiteral("None")});
        printers.printers[0].diagnostic = QStringLiteral("First line.\nSecond line.");
        printers.selectedPrinterName = QStringLiteral("W9400");
        SessionBackdoor::set(model->printerReadings, printers);
        SessionBackdoor::set(model->protectionMessage, QStringLiteral("Changed."));
        SessionBackdoor::set(model->protectionChanges, QStringList({QStringLiteral("/a/%1"), QStringLiteral("/b")}));
        PresetForm form = model->presetForm();
        form.mediaName = QStringLiteral("Canvas M");
        form.icc = OutputICCProfile{.name = QStringLiteral("Matte"),
                                    .profileClass = QStringLiteral("prtr"),
                                    .colorModel = QStringLiteral("CMYK"),
                                    .componentCount = 4,
                                    .sha256 = QStringLiteral("abc")};
        form.iccAsset = ManagedICCAsset{.filename = QStringLiteral("abc.icc"),
                                        .sha256 = QStringLiteral("abc"),
                                        .displayName = QStringLiteral("Matte.icc")};
        form.colorWorkflow = {.mode = ColorManagementMode::appManaged,
                              .intent = ColorRenderingIntent::perceptual,
                              .driverColorCorrectionDisabledConfirmed = true};
        SessionBackdoor::set(model->presetForm, form);
        SessionBackdoor::set(model->observations, observations());
    }

    static QList<PrintObservation> observations() {
        return {{.id = QUuid::createUuid(),
                 .createdAt = {816246300.0},
                 .sequenceNumber = 2,
                 .result = PrintObservationResult::purple,
                 .note = QStringLiteral("at the edge %1"),
                 .artwork = QStringLiteral("a.png"),
                 .media = QStringLiteral("Canvas M"),
                 .preset = QStringLiteral("Matte"),
                 .colorMode = QStringLiteral("app"),
                 .iccSHA256 = QStringLiteral("abc")},
                {.id = QUuid::createUuid(),
                 .createdAt = {0.0},
                 .sequenceNumber = 1,
                 .result = PrintObservationResult::normal,
                 .note = {},
                 .artwork = QStringLiteral("未指定作品"),
                 .media = QStringLiteral("Canvas M"),
                 .preset = QStringLiteral("自定义"),
                 .colorMode = QStringLiteral("driver"),
                 .iccSHA256 = std::nullopt}};
    }
};

TEST_F(Diagnostics, TellEverythingLineByLine) {
    start();
    knowEverything();
    EXPECT_EQ(report(), expected(R"(Recorded at: 2026-11-13 07:05:00 +0000
Queue: W9400
disabled since noon -
Out of canvas
URI: socket://10.0.0.9
PageSize / Media Size: A4 Roll60 [default=A4]
Resolution / Print Quality: 600dpi 1200dpi [default=unknown]
CutMedia / Cutting %1: PrinterDefault None [default=None]
First line.
Second line.

User reported: cutting was disabled on the printer panel and the existing setup worked.
App policy: no cutting, media-library or Canon-default writes; no direct hardware submission interface.
Local settings check: Changed.
Changed paths: /a/%1
/b
Public cutting capability: Possible cutting-related driver options: CutMedia. No verified iPF9400 mapping or device validation is available. Option names and the word Manual do not prove the cutter is disabled. Unattended automatic submission is locked.
Canvas: Canvas M. Private panel-media parameters have not been read.
Roll: 60 × 21 in; 1 artworks, each with a 2.5-inch border on every side and trim guides at the outer border.
Current colour: Convert in the app to the selected ICC / Perceptual
ICC: Matte / abc
Source image: No embedded profile reported; sRGB is not assumed
Maintenance cartridge and printhead: unknown when CUPS exposes no data. Idle does not confirm hardware health.
Reported issue: purple patches after several prints, in varying positions. Causes and repairs have not been physically validated.

Physical observations (entered manually, not device measurements):
2026-11-13 07:05:00 +0000 Print 2 Local purple shift | a.png | Canvas M | Matte | app | ICC=abc | at the edge %1
2001-01-01 00:00:00 +0000 Print 1 Color normal | 未指定作品 | Canvas M | 自定义 | driver | ICC=None | )"));
}

TEST_F(Diagnostics, TellThatNothingIsKnown) {
    start();
    EXPECT_EQ(report(), expected(R"(Recorded at: 2026-11-13 07:05:00 +0000
Queue: Not selected
Not read
URI: Unknown
No queue found


User reported: cutting was disabled on the printer panel and the existing setup worked.
App policy: no cutting, media-library or Canon-default writes; no direct hardware submission interface.
Local settings check: Reading existing settings fingerprints…
Changed paths: 
Public cutting capability: No printer is selected. Manual Cutting is unverified; unattended automatic submission is locked.
Canvas: HP Professional Matte Canvas · J3E87B. Private panel-media parameters have not been read.
Roll: 60 × 0 in; 0 artworks, each with a 2.5-inch border on every side and trim guides at the outer border.
Current colour: Let the Canon driver manage color / Relative colorimetric
ICC: Not selected / None
Source image: Not imported
Maintenance cartridge and printhead: unknown when CUPS exposes no data. Idle does not confirm hardware health.
Reported issue: purple patches after several prints, in varying positions. Causes and repairs have not been physically validated.

Physical observations (entered manually, not device measurements):
)"));
}

TEST_F(Diagnostics, TellEverythingInChinese) {
    const test::InChinese chinese;
    start();
    knowEverything();
    EXPECT_EQ(report(), expected(R"(记录时间：2026-11-13 07:05:00 +0000
队列：W9400
disabled since noon -
Out of canvas
URI：socket://10.0.0.9
PageSize / Media Size: A4 Roll60 [default=A4]
Resolution / Print Quality: 600dpi 1200dpi [default=unknown]
CutMedia / Cutting %1: PrinterDefault None [default=None]
First line.
Second line.

用户报告：打印机面板已停用裁切，现有设置可正常工作。
应用策略：不写入裁切、介质库或佳能默认设置；不提供直接提交到硬件的接口。
本地设置检查：Changed.
已变化的路径：/a/%1
/b
公开的裁切能力：可能与裁切有关的驱动选项：CutMedia。目前没有经核实的 iPF9400 对应关系，也没有经过设备验证。选项名称和 Manual 一词都不能证明刀具已停用。无人值守自动发送已锁定。
画布：Canvas M。未读取面板的私有介质参数。
卷布：60 × 21 英寸；1 幅作品，每幅四周保留 2.5 英寸白边，白边外沿印有裁剪虚线。
当前颜色：由应用转换到所选 ICC / 可感知
ICC：Matte / abc
原图：未报告嵌入配置；不推定为 sRGB
维护墨盒和打印头：CUPS 未提供数据时为未知。空闲状态不代表硬件正常。
已报告问题：连续打印数张后出现紫色斑块，位置不固定。原因和修复均未经实物验证。

实物观察（手动记录，并非设备测量结果）：
2026-11-13 07:05:00 +0000 第2张 局部偏紫 | a.png | Canvas M | Matte | app | ICC=abc | at the edge %1
2001-01-01 00:00:00 +0000 第1张 颜色正常 | 未指定作品 | Canvas M | 自定义 | driver | ICC=无 | )"));
}

TEST_F(Diagnostics, TellInChineseThatNothingIsKnown) {
    const test::InChinese chinese;
    start();
    EXPECT_EQ(report(), expected(R"(记录时间：2026-11-13 07:05:00 +0000
队列：未选择
未读取
URI：未知
未找到队列


用户报告：打印机面板已停用裁切，现有设置可正常工作。
应用策略：不写入裁切、介质库或佳能默认设置；不提供直接提交到硬件的接口。
本地设置检查：正在读取现有设置指纹…
已变化的路径：
公开的裁切能力：未选择打印机。Manual Cutting 未经核实，无人值守自动发送已锁定。
画布：HP Professional Matte Canvas · J3E87B。未读取面板的私有介质参数。
卷布：60 × 0 英寸；0 幅作品，每幅四周保留 2.5 英寸白边，白边外沿印有裁剪虚线。
当前颜色：由佳能驱动管理颜色 / 相对比色
ICC：未选择 / 无
原图：未导入
维护墨盒和打印头：CUPS 未提供数据时为未知。空闲状态不代表硬件正常。
已报告问题：连续打印数张后出现紫色斑块，位置不固定。原因和修复均未经实物验证。

实物观察（手动记录，并非设备测量结果）：
)"));
}

} // namespace
} // namespace orvex
