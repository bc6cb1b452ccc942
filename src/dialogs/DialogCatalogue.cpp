// In the order in which a login shows them.
#include "dialogs/DialogCatalogue.h"

#include "dialogs/frmDownload.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmNewProfile.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmProfiles.h"
#include "dialogs/frmServer.h"
#include "dialogs/frmWait.h"

namespace kq {

std::vector<const FormRow*> DialogCatalogue() {
    return {&frmServer::Row(),   &frmLogin::Row(),      &frmWait::Row(),    &frmPassword::Row(),
            &frmProfiles::Row(), &frmNewProfile::Row(), &frmDownload::Row()};
}

}  // namespace kq
