#include "Stores/LocalQueueTexts.h"

#include "OrvexLanguage.h"

namespace orvex::LocalQueueTexts {

QString pdfNotDeleted() {
    return spt("作业记录已移除，但无法删除其 PDF。请检查应用数据文件夹的权限。",
               "The job record was removed, but its PDF could not be deleted. Check permissions for the app data "
               "folder.");
}

} // namespace orvex::LocalQueueTexts
