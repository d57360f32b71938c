#include "programs/veskoWarning/WarningDialog.h"

#include <string>

#include <gtk/gtk.h>

// GTK, fontconfig and their friends keep caches for the life of the process and free them to
// the system at exit; in a sanitized build their leak reports would drown ours and turn a
// good answer into a failed exit. Only allocations made inside these libraries are excused.
// The sanitizer runtime looks the function up by name, so it must stay visible.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libgtk-3.so\nleak:libgdk-3.so\nleak:libglib-2.0.so\nleak:libgobject-2.0.so\n"
           "leak:libgio-2.0.so\nleak:libfontconfig.so\nleak:libpango\nleak:libcairo.so\n"
           "leak:libharfbuzz.so\nleak:libfreetype.so\nleak:libX11.so\nleak:libatk\n"
           "leak:libgdk_pixbuf\nleak:libepoxy.so\nleak:librsvg\nleak:libdbus-1.so\n"
           "leak:libatspi.so\n";
}

// The list of what was excused is noise on the program's standard error.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options() {
    return "print_suppressions=0";
}

namespace veskoWarning {

namespace {

const char* iconName(const qvString::CString& kind) {
    if (kind == "error")
        return "dialog-error";
    if (kind == "info")
        return "dialog-information";
    if (kind == "question")
        return "dialog-question";
    return "dialog-warning";
}

// A label shows text as it is (no markup, no mnemonics), wraps long lines and can be
// selected so that the user can copy a message into a report.
GtkWidget* textLabel(const std::string& text) {
    GtkWidget* label = gtk_label_new(nullptr);
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(label), 70);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0f);
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    gtk_widget_set_can_focus(label, FALSE);
    return label;
}

} // namespace

bool showWarningDialog(const qvObrixBase::VeskoWarningParams& params, int& answer) {
    if (!gtk_init_check(nullptr, nullptr))
        return false;

    GtkWidget* dialog = gtk_dialog_new();
    gtk_window_set_title(GTK_WINDOW(dialog),
                         params.title.empty() ? "Warning" : params.title.c_str());
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    gtk_window_set_keep_above(GTK_WINDOW(dialog), TRUE);

    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
    gtk_container_set_border_width(GTK_CONTAINER(row), 12);
    GtkWidget* icon = gtk_image_new_from_icon_name(iconName(params.kind), GTK_ICON_SIZE_DIALOG);
    gtk_widget_set_valign(icon, GTK_ALIGN_START);
    gtk_box_pack_start(GTK_BOX(row), icon, FALSE, FALSE, 0);

    GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    std::string lines;
    for (const qvString::CString& line : params.lines)
        lines += (lines.empty() ? "" : "\n") + line;
    gtk_box_pack_start(GTK_BOX(column), textLabel(lines), FALSE, FALSE, 0);
    for (const qvString::CString& detail : params.details) {
        GtkWidget* label = textLabel(detail);
        gtk_style_context_add_class(gtk_widget_get_style_context(label), "dim-label");
        gtk_box_pack_start(GTK_BOX(column), label, FALSE, FALSE, 0);
    }
    // A long warning scrolls instead of growing past the screen.
    GtkWidget* scroll = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroll), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_height(GTK_SCROLLED_WINDOW(scroll), TRUE);
    gtk_scrolled_window_set_propagate_natural_width(GTK_SCROLLED_WINDOW(scroll), TRUE);
    gtk_scrolled_window_set_max_content_height(GTK_SCROLLED_WINDOW(scroll), 480);
    gtk_container_add(GTK_CONTAINER(scroll), column);
    gtk_box_pack_start(GTK_BOX(row), scroll, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), row, TRUE, TRUE,
                       0);

    // Response ids are the button indices (GTK keeps the negative ids for itself), in the
    // order given, left to right.
    GtkWidget* first = nullptr;
    for (std::size_t i = 0; i < params.buttons.size(); ++i) {
        GtkWidget* button = gtk_button_new_with_label(params.buttons[i].c_str());
        gtk_widget_set_can_default(button, TRUE);
        gtk_dialog_add_action_widget(GTK_DIALOG(dialog), button, static_cast<gint>(i));
        if (!first)
            first = button;
    }
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), 0);
    gtk_widget_show_all(dialog);
    if (first)
        gtk_widget_grab_focus(first);

    gint response = gtk_dialog_run(GTK_DIALOG(dialog));
    // Closing the window (or Escape) is GTK_RESPONSE_DELETE_EVENT: the defined "closed".
    answer = response >= 0 ? response : -1;
    gtk_widget_destroy(dialog);
    while (gtk_events_pending())
        gtk_main_iteration();
    return true;
}

} // namespace veskoWarning
