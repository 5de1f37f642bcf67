#include "gimp/dialog/portraitDialog.h"

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "gimp/dialog/controls.h"
#include "gimp/dialog/effectList.h"
#include "gimp/dialog/messagePanel.h"
#include "gimp/dialog/presetBar.h"
#include "gimp/dialog/previewPanel.h"
#include "gimp/dialog/signals.h"
#include "gimp/picture/pictureFaces.h"
#include "gimp/procedures/savedValues.h"
#include "gimp/run/refusal.h"
#include "gimp/run/request.h"
#include "gimp/run/worker.h"

namespace zelgimp {

namespace {

constexpr const char* kRole = "zel-portrait";
/// The file that remembers which effect was chosen, and its one entry.
constexpr const char *kDialogValues = "portrait-dialog", *kChosenEffect = "effect";
/// The dialog's answer beside those of the toolkit.
constexpr int kResetResponse = 1;
/// Milliseconds without a change before the preview is made, and between two looks at the progress.
constexpr guint kPreviewDelay = 200, kProgressDelay = 100;
/// Width of the controls, in lines of text.
constexpr int kControlsWidth = 22;

/// What a failure says to a user.
std::string sentenceOf(const std::exception_ptr& thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const libzel::Error& error) {
        return zelgimp::sentenceOf(error.what());
    } catch (const std::bad_alloc&) {
        return "There is not enough memory for this picture.";
    } catch (const std::exception& error) {
        return error.what();
    }
}

/// A timer of the main loop that goes with its owner.
class Timer {
public:
    ~Timer() { stop(); }
    void start(guint milliseconds, std::function<bool()> call) {
        stop();
        m_call = std::move(call);
        m_source = g_timeout_add(
            milliseconds,
            [](gpointer self) -> gboolean {
                auto& timer = *static_cast<Timer*>(self);
                if (timer.m_call()) return G_SOURCE_CONTINUE;
                timer.m_source = 0;
                return G_SOURCE_REMOVE;
            },
            this);
    }
    void stop() {
        if (m_source) g_source_remove(std::exchange(m_source, 0));
    }

private:
    guint m_source = 0;
    std::function<bool()> m_call;
};

class PortraitDialog {
public:
    explicit PortraitDialog(const TargetLayer& layer);
    ~PortraitDialog() { gtk_widget_destroy(m_window); }
    PortraitDialog(const PortraitDialog&) = delete;
    PortraitDialog& operator=(const PortraitDialog&) = delete;

    bool run(const zel_effect* effect);

private:
    GtkWidget* effectPanel();
    GtkWidget* content();
    void answered(int response);

    void choose(const zel_effect& effect);
    void showRequest();
    void reset();
    void takePreset(const ValueTexts& values);
    void valuesChanged();

    void preview();
    EffectCall preparedCall(bool usesFaces);
    void startEffect(EffectCall call);
    void effectDone(const std::shared_ptr<const Rgba>& after, const std::exception_ptr& thrown);
    bool areFacesAsked(bool usesFaces);
    void findFaces();
    void facesFound(libzel::Faces faces, const std::exception_ptr& thrown);
    void setFaces(libzel::Faces faces);
    void faceMoved();

    void accept();
    void write();
    void setApplying(bool applies);
    void stopApplying();
    void showProblem(const std::string& sentence);
    bool showProgress();

    Request& request() { return m_requests.at(m_effect); }

    TargetLayer m_layer;
    std::shared_ptr<const Rgba> m_before,
        m_after;  // m_after: of the values that are set now; null: not made yet
    std::map<const zel_effect*, Request> m_requests;  // of this session, so that a second look finds them
    const zel_effect* m_effect = nullptr;
    libzel::Faces m_faces;  // of the picture; null: not found yet
    bool m_hasFinder = true, m_isApplying = false, m_isChanged = false;

    GtkWidget *m_window, *m_title = nullptr, *m_summary = nullptr, *m_controlsBox = nullptr,
                         *m_progress = nullptr, *m_inputs = nullptr;
    EffectList m_list;
    PresetBar m_presets;
    PreviewPanel m_preview;
    std::unique_ptr<MessagePanel> m_messages;
    std::unique_ptr<Controls> m_controls;
    Timer m_previewTimer, m_progressTimer;
    Worker m_worker;  // the last one, so that nothing that its tasks call is gone before it
};

PortraitDialog::PortraitDialog(const TargetLayer& layer)
    : m_layer(layer),
      m_before(std::make_shared<Rgba>(layer.read())),
      m_faces(keptFaces(layer.image())),
      m_window(gimp_dialog_new("Portrait", kRole, nullptr, GtkDialogFlags(0), nullptr, nullptr, "_Reset",
                               kResetResponse, "_Cancel", GTK_RESPONSE_CANCEL, "_OK", GTK_RESPONSE_OK,
                               nullptr)),
      m_list([this](const zel_effect& effect) { choose(effect); }),
      m_presets({[this](const ValueTexts& values) { takePreset(values); },
                 [this] { return textsOf(request()); },
                 [this](const std::string& why) { m_messages->setProblem(why); }}),
      m_preview(m_before, {[this] { faceMoved(); },
                           [this](double x, double y) {
                               if (m_controls) m_controls->takePlace(x, y);
                           },
                           [this] {
                               m_hasFinder = true;
                               findFaces();
                           }}) {
    gtk_dialog_set_alternative_button_order(GTK_DIALOG(m_window), GTK_RESPONSE_OK, kResetResponse,
                                            GTK_RESPONSE_CANCEL, -1);
    gimp_window_set_transient(GTK_WINDOW(m_window));
    g_signal_connect(m_window, "delete-event", G_CALLBACK(gtk_widget_hide_on_delete), nullptr);
    g_signal_connect(m_window, "response", G_CALLBACK(+[](GtkDialog*, gint response, gpointer self) {
                         static_cast<PortraitDialog*>(self)->answered(response);
                     }),
                     this);
    GtkWidget* const area = gtk_dialog_get_content_area(GTK_DIALOG(m_window));
    m_inputs = content();
    m_progress = gtk_progress_bar_new();
    GtkWidget* const below = gtk_vbox_new(FALSE, 0);
    gtk_container_set_border_width(GTK_CONTAINER(below), static_cast<guint>(2 * gapOf(m_window)));
    gtk_box_pack_start(GTK_BOX(below), m_progress, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(area), m_inputs, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(area), below, FALSE, FALSE, 0);
    m_messages->setLayerNote(m_layer.precisionNote());
    if (m_faces) setFaces(std::move(m_faces));
}

GtkWidget* PortraitDialog::content() {
    const int gap = gapOf(m_window);
    GtkWidget* const row = gtk_hbox_new(FALSE, 2 * gap);
    gtk_container_set_border_width(GTK_CONTAINER(row), static_cast<guint>(2 * gap));
    gtk_box_pack_start(GTK_BOX(row), m_list.widget(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row), m_preview.widget(), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(row), effectPanel(), FALSE, FALSE, 0);
    return row;
}

GtkWidget* PortraitDialog::effectPanel() {
    const int width = kControlsWidth * static_cast<int>(lineHeight(m_window));
    GtkWidget* const panel = gtk_vbox_new(FALSE, 2 * gapOf(m_window));
    m_title = leftLabel("");
    gimp_label_set_attributes(GTK_LABEL(m_title), PANGO_ATTR_SCALE, PANGO_SCALE_LARGE, PANGO_ATTR_WEIGHT,
                              PANGO_WEIGHT_BOLD, -1);
    m_summary = wrappedLabel("", width);
    m_messages = std::make_unique<MessagePanel>(width);
    m_controlsBox = gtk_vbox_new(FALSE, 0);

    GtkWidget* const scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    // So that a bar beside the controls does not touch them.
    GtkWidget* const beside = gtk_alignment_new(0, 0, 1, 0);
    gtk_alignment_set_padding(GTK_ALIGNMENT(beside), 0, 0, 0, static_cast<guint>(gapOf(m_window)));
    gtk_container_add(GTK_CONTAINER(beside), m_controlsBox);
    gtk_scrolled_window_add_with_viewport(GTK_SCROLLED_WINDOW(scrolled), beside);
    GtkWidget* const viewport = gtk_bin_get_child(GTK_BIN(scrolled));
    gtk_viewport_set_shadow_type(GTK_VIEWPORT(viewport), GTK_SHADOW_NONE);

    gtk_box_pack_start(GTK_BOX(panel), m_title, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(panel), m_summary, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(panel), scrolled, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(panel), m_messages->widget(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(panel), m_presets.widget(), FALSE, FALSE, 0);
    return panel;
}

bool PortraitDialog::run(const zel_effect* effect) {
    if (!effect) {
        const ValueTexts last = SavedValues(kDialogValues).last();
        const auto name = last.find(kChosenEffect);
        if (name == last.end() || zel_effect_find(name->second.c_str(), &effect) != ZEL_OK)
            effect = zel_effect_at(0);
    }
    gtk_widget_show_all(m_window);
    m_list.choose(*effect);
    gtk_widget_grab_focus(m_list.searchEntry());
    gtk_main();
    // What still runs comes to its end unseen.
    gtk_widget_hide(m_window);
    return m_isChanged;
}

void PortraitDialog::answered(int response) {
    if (response == kResetResponse)
        reset();
    else if (response == GTK_RESPONSE_OK)
        accept();
    else if (m_isApplying && response == GTK_RESPONSE_CANCEL)
        stopApplying();
    else
        gtk_main_quit();
}

void PortraitDialog::choose(const zel_effect& effect) {
    if (&effect == m_effect) return;
    m_effect = &effect;
    if (!m_requests.contains(&effect)) {
        Request& made = m_requests.emplace(&effect, Request::of(effect)).first->second;
        takeTexts(made, m_layer.image(), SavedValues(effect.name).last());
    }
    gtk_label_set_text(GTK_LABEL(m_title), effect.title);
    gtk_label_set_text(GTK_LABEL(m_summary), (std::string(effect.summary) + ".").c_str());
    m_presets.showFor(effect.name);
    m_preview.view().setAfter(nullptr);
    showRequest();
}

/// The controls made anew from the values.
void PortraitDialog::showRequest() {
    m_preview.view().askForPlace(false);
    m_controls.reset();
    m_controls = std::make_unique<Controls>(
        request(), m_layer.drawable(),
        Controls::Listener{[this] { valuesChanged(); },
                           [this](bool wants) { m_preview.view().askForPlace(wants); }});
    gtk_box_pack_start(GTK_BOX(m_controlsBox), m_controls->widget(), FALSE, FALSE, 0);
    valuesChanged();
}

void PortraitDialog::reset() {
    request() = Request::of(*m_effect);
    showRequest();
}

void PortraitDialog::takePreset(const ValueTexts& values) {
    takeTexts(request(), m_layer.image(), values);
    showRequest();
}

void PortraitDialog::valuesChanged() {
    m_after = nullptr;
    m_worker.cancel();
    m_previewTimer.start(kPreviewDelay, [this] {
        preview();
        return false;
    });
}

/// Starts what brings the result of the present values: first the search for faces, where they are needed.
void PortraitDialog::preview() {
    m_previewTimer.stop();
    try {
        const Meaning meaning = meaningOf(request());
        m_messages->setProblem("");
        m_messages->setCaution(zelgimp::sentenceOf(meaning.caution));
        m_preview.setUsesFaces(meaning.usesFaces);
        if (areFacesAsked(meaning.usesFaces))
            findFaces();
        else
            startEffect(preparedCall(meaning.usesFaces));
    } catch (...) {
        showProblem(sentenceOf(std::current_exception()));
    }
}

bool PortraitDialog::areFacesAsked(bool usesFaces) {
    return usesFaces && !m_faces && m_hasFinder;
}

EffectCall PortraitDialog::preparedCall(bool usesFaces) {
    EffectCall call = callOf(request(), m_layer, m_before);
    if (!usesFaces) return call;
    call.faces = facesForEffect(m_faces.get(), m_layer);
    requireFaces(*m_effect, call.faces.get());
    return call;
}

void PortraitDialog::startEffect(EffectCall call) {
    const auto after = std::make_shared<Rgba>();
    m_worker.start({[call = std::move(call), after](TaskVoice& voice) {
                        *after = call.run([&voice](double fraction, const char* stage) {
                            return voice.tell(fraction, stage);
                        });
                    },
                    [this, after](const std::exception_ptr& thrown) { effectDone(after, thrown); }});
    m_progressTimer.start(kProgressDelay, [this] { return showProgress(); });
}

void PortraitDialog::effectDone(const std::shared_ptr<const Rgba>& after, const std::exception_ptr& thrown) {
    if (thrown) {
        showProblem(sentenceOf(thrown));
        return;
    }
    m_after = after;
    m_preview.view().setAfter(after);
    if (m_isApplying) write();
}

void PortraitDialog::findFaces() {
    m_after = nullptr;
    const auto visible = std::make_shared<Rgba>(visiblePixels(m_layer.image()));
    const auto found = std::make_shared<libzel::Faces>();
    m_worker.start(
        {[visible, found](TaskVoice& voice) {
             voice.tell(0, "finding faces");
             *found = libzel::findFaces(library(), pixelsOf(*visible));
         },
         [this, found](const std::exception_ptr& thrown) { facesFound(std::move(*found), thrown); }});
    m_progressTimer.start(kProgressDelay, [this] { return showProgress(); });
}

/// Without a finder the effects that can go on without faces do.
void PortraitDialog::facesFound(libzel::Faces faces, const std::exception_ptr& thrown) {
    if (thrown) {
        m_hasFinder = false;
        const std::string why = sentenceOf(thrown);
        if (m_effect->faces == ZEL_REQUIRED) {
            showProblem(why);
            return;
        }
        m_messages->setFacesNote(why + " The effect goes on without faces.");
    } else {
        keepFaces(m_layer.image(), faces.get());
        setFaces(std::move(faces));
    }
    preview();
}

void PortraitDialog::setFaces(libzel::Faces faces) {
    m_faces = std::move(faces);
    const std::size_t count = zel_faces_count(m_faces.get());
    m_messages->setFacesNote(count == 0 ? "No face was found in this picture." : "");
    m_preview.view().setFaces(onLayer(listOf(m_faces.get()), m_layer));
}

void PortraitDialog::faceMoved() {
    try {
        m_faces = facesOf(onPicture(m_preview.view().faces(), m_layer), gimp_image_width(m_layer.image()),
                          gimp_image_height(m_layer.image()));
        keepFaces(m_layer.image(), m_faces.get());
    } catch (const libzel::Error& error) {
        showProblem(zelgimp::sentenceOf(error.what()));
        return;
    }
    valuesChanged();
}

void PortraitDialog::accept() {
    if (m_isApplying) return;
    setApplying(true);
    try {
        // Somebody may have painted meanwhile.
        const TargetLayer now(m_layer.image(), m_layer.drawable());
        auto pixels = std::make_shared<Rgba>(now.read());
        const bool isRepainted = *pixels != *m_before;
        if (isRepainted) {
            if (pixels->width != m_before->width || pixels->height != m_before->height)
                throw Refusal("The layer's size has changed meanwhile: please open this dialog again.");
            m_before = std::move(pixels);
            m_after = nullptr;
        }
        const TaskVoice* const voice = m_worker.voice();
        if (m_after)
            write();
        else if (!voice || voice->isCancelled() || isRepainted)
            preview();
        // else: what runs is for these values, and its result is written
    } catch (...) {
        showProblem(sentenceOf(std::current_exception()));
    }
}

void PortraitDialog::write() {
    try {
        m_layer.write(*m_before, *m_after, request().blend());
        m_isChanged = true;
        SavedValues(m_effect->name).setLast(textsOf(request()));
        SavedValues(kDialogValues).setLast({{kChosenEffect, m_effect->name}});
    } catch (const Refusal& refusal) {
        // Values that cannot be kept are no reason to stay, once the layer is changed.
        if (!m_isChanged) {
            showProblem(refusal.what());
            return;
        }
        g_message("%s", refusal.what());
    }
    gtk_main_quit();
}

/// While the result is waited for, nothing can be changed.
void PortraitDialog::setApplying(bool applies) {
    m_isApplying = applies;
    gtk_widget_set_sensitive(m_inputs, !applies);
    gtk_dialog_set_response_sensitive(GTK_DIALOG(m_window), GTK_RESPONSE_OK, !applies);
    gtk_dialog_set_response_sensitive(GTK_DIALOG(m_window), kResetResponse, !applies);
}

void PortraitDialog::stopApplying() {
    m_worker.cancel();
    m_previewTimer.stop();
    setApplying(false);
}

void PortraitDialog::showProblem(const std::string& sentence) {
    setApplying(false);
    m_preview.view().setAfter(nullptr);
    m_messages->setProblem(sentence);
}

bool PortraitDialog::showProgress() {
    const TaskVoice* const voice = m_worker.voice();
    GtkProgressBar* const bar = GTK_PROGRESS_BAR(m_progress);
    const bool isShown = voice && !voice->isCancelled();
    gtk_progress_bar_set_fraction(bar, isShown ? voice->fraction() : 0);
    gtk_progress_bar_set_text(bar, isShown ? zelgimp::sentenceOf(voice->stage()).c_str() : "");
    return voice != nullptr;
}

}  // namespace

bool runDialog(const TargetLayer& layer, const zel_effect* effect) {
    gimp_ui_init("zel-portrait", TRUE);
    return PortraitDialog(layer).run(effect);
}

}  // namespace zelgimp
