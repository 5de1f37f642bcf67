#include "gimp/dialog/sourceCombo.h"

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include <utility>

#include "gimp/dialog/signals.h"

namespace zelgimp {

namespace {

/// Values of the list beside the drawables' own.
constexpr gint kNoneValue = -1, kSelectionValue = -2;

/// Another item of the target's picture.
gboolean isOfSamePicture(gint32 image, gint32 item, gpointer target) {
    const gint32 own = GPOINTER_TO_INT(target);
    return item != own && image == gimp_item_get_image(own);
}

gint valueOf(const Source& source) {
    if (source.kind == Source::kNone) return kNoneValue;
    return source.kind == Source::kSelection ? kSelectionValue : source.drawable;
}

void prepend(GtkWidget* combo, gint value, const char* label, const char* icon) {
    gimp_int_combo_box_prepend(GIMP_INT_COMBO_BOX(combo), GIMP_INT_STORE_VALUE, value, GIMP_INT_STORE_LABEL,
                               label, GIMP_INT_STORE_ICON_NAME, icon, -1);
}

}  // namespace

GtkWidget* sourceCombo(SourceChoice choice, zel_need need, gint32 target, const Source& chosen,
                       std::function<void(const Source&)> changed) {
    GtkWidget* const combo = choice == SourceChoice::mask
                                 ? gimp_drawable_combo_box_new(isOfSamePicture, GINT_TO_POINTER(target))
                                 : gimp_layer_combo_box_new(isOfSamePicture, GINT_TO_POINTER(target));
    if (choice == SourceChoice::mask) prepend(combo, kSelectionValue, "Selection", GIMP_ICON_SELECTION);
    if (need != ZEL_REQUIRED)
        prepend(combo, kNoneValue, choice == SourceChoice::depth ? "Estimated" : "None", nullptr);
    gimp_int_combo_box_set_active(GIMP_INT_COMBO_BOX(combo), valueOf(chosen));
    onSignal(combo, "changed", [combo, told = std::move(changed)] {
        gint value = kNoneValue;
        if (!gimp_int_combo_box_get_active(GIMP_INT_COMBO_BOX(combo), &value)) return;
        if (value == kSelectionValue)
            told({Source::kSelection, -1});
        else
            told(value < 0 ? Source{} : Source{Source::kDrawable, value});
    });
    return combo;
}

}  // namespace zelgimp
