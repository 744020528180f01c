#include "ui/forms.h"

#include "ui/main_form.h"
#include "ui/profile.h"
#include "ui/update_form.h"
#include "ui/verzeichnis.h"

namespace britlock {

void add_forms(Program& program) {
    add_form<MainForm>(program);
    add_form<verzeichnis>(program);
    add_form<Update>(program);
    add_form<profile>(program);
}

}  // namespace britlock
