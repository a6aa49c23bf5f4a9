#include "StoreChange.h"

#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexQAWorkspace.h"

namespace orvex {

StoreChange::StoreChange() : lock_(SessionLock::acquire(OrvexQAWorkspace::directory())) {
    if (lock_.state() == SessionLock::State::heldByAnother) {
        throw OrvexError::invalid(spt("orvex 正在使用此数据文件夹，未作任何更改。请先退出 orvex，然后重试。",
                                      "orvex is open with this data folder, so nothing was changed. Quit orvex and "
                                      "try again."));
    }
}

} // namespace orvex
