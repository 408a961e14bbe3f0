/* A GTK 4 application for the end-to-end tests: a header bar with a menu
 * button and its popover menu, a text entry, a check box, buttons that share
 * their name with hidden ones (a hidden button, and a button on a stack page
 * that is not shown), and a button that opens a message dialog. What was
 * done shows in the status label ("Last: ..."). */
#include <gtk/gtk.h>

static GtkLabel *status_label;

static void set_status(const char *text) {
    char *line = g_strdup_printf("Last: %s", text);
    gtk_label_set_text(status_label, line);
    g_free(line);
}

static void on_button(GtkButton *button, gpointer what) {
    (void)button;
    set_status((const char *)what);
}

static void on_toggled(GtkCheckButton *check, gpointer data) {
    (void)data;
    set_status(gtk_check_button_get_active(check) ? "feature 1" : "feature 0");
}

static void on_entry_changed(GtkEditable *editable, gpointer data) {
    (void)data;
    char *line = g_strdup_printf("entry %s", gtk_editable_get_text(editable));
    set_status(line);
    g_free(line);
}

static void on_hello(GSimpleAction *action, GVariant *parameter, gpointer data) {
    (void)action;
    (void)parameter;
    (void)data;
    set_status("hello");
}

static void on_dialog_response(GtkDialog *dialog, int response, gpointer data) {
    (void)data;
    set_status(response == GTK_RESPONSE_CANCEL ? "dialog cancelled" : "dialog closed");
    gtk_window_destroy(GTK_WINDOW(dialog));
}

static void on_ask(GtkButton *button, gpointer window) {
    (void)button;
    GtkWidget *dialog = gtk_message_dialog_new(GTK_WINDOW(window), GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT,
                                               GTK_MESSAGE_QUESTION, GTK_BUTTONS_NONE, "Save Changes?");
    gtk_dialog_add_buttons(GTK_DIALOG(dialog), "Cancel", GTK_RESPONSE_CANCEL, "Discard", GTK_RESPONSE_REJECT, NULL);
    g_signal_connect(dialog, "response", G_CALLBACK(on_dialog_response), NULL);
    gtk_window_present(GTK_WINDOW(dialog));
}

static GtkWidget *button(const char *label, const char *status) {
    GtkWidget *b = gtk_button_new_with_label(label);
    g_signal_connect(b, "clicked", G_CALLBACK(on_button), (gpointer)status);
    return b;
}

static void activate(GtkApplication *app, gpointer data) {
    (void)data;
    GtkWidget *window = gtk_application_window_new(app);
    gtk_window_set_title(GTK_WINDOW(window), "Zeblo GTK4");
    gtk_window_set_default_size(GTK_WINDOW(window), 480, 360);

    GSimpleAction *hello = g_simple_action_new("hello", NULL);
    g_signal_connect(hello, "activate", G_CALLBACK(on_hello), NULL);
    g_action_map_add_action(G_ACTION_MAP(app), G_ACTION(hello));
    g_object_unref(hello);

    GtkWidget *header = gtk_header_bar_new();
    GMenu *menu = g_menu_new();
    g_menu_append(menu, "Say Hello", "app.hello");
    GtkWidget *menu_button = gtk_menu_button_new();
    gtk_menu_button_set_label(GTK_MENU_BUTTON(menu_button), "Menu");
    gtk_menu_button_set_menu_model(GTK_MENU_BUTTON(menu_button), G_MENU_MODEL(menu));
    g_object_unref(menu);
    gtk_header_bar_pack_end(GTK_HEADER_BAR(header), menu_button);
    gtk_window_set_titlebar(GTK_WINDOW(window), header);

    GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    gtk_widget_set_margin_start(box, 12);
    gtk_widget_set_margin_end(box, 12);
    gtk_widget_set_margin_top(box, 12);

    /* Buttons named "Cancel" that nobody can see come first. */
    GtkWidget *hidden = button("Cancel", "hidden cancel");
    gtk_widget_set_visible(hidden, FALSE);
    gtk_box_append(GTK_BOX(box), hidden);
    GtkWidget *stack = gtk_stack_new();
    GtkWidget *back_page = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    gtk_box_append(GTK_BOX(back_page), button("Cancel", "stacked cancel"));
    gtk_box_append(GTK_BOX(back_page), button("Page Two Only", "page two"));
    GtkWidget *front_page = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    gtk_box_append(GTK_BOX(front_page), gtk_label_new("Page one is shown"));
    gtk_stack_add_named(GTK_STACK(stack), back_page, "two");
    gtk_stack_add_named(GTK_STACK(stack), front_page, "one");
    gtk_stack_set_visible_child_name(GTK_STACK(stack), "one");
    gtk_box_append(GTK_BOX(box), stack);

    GtkWidget *entry = gtk_entry_new();
    gtk_accessible_update_property(GTK_ACCESSIBLE(entry), GTK_ACCESSIBLE_PROPERTY_LABEL, "Name", -1);
    g_signal_connect(entry, "changed", G_CALLBACK(on_entry_changed), NULL);
    gtk_box_append(GTK_BOX(box), entry);

    GtkWidget *check = gtk_check_button_new_with_label("Enable Feature");
    g_signal_connect(check, "toggled", G_CALLBACK(on_toggled), NULL);
    gtk_box_append(GTK_BOX(box), check);

    gtk_box_append(GTK_BOX(box), button("Cancel", "visible cancel"));
    GtkWidget *ask = gtk_button_new_with_label("Ask");
    g_signal_connect(ask, "clicked", G_CALLBACK(on_ask), window);
    gtk_box_append(GTK_BOX(box), ask);

    status_label = GTK_LABEL(gtk_label_new("Last: none"));
    gtk_box_append(GTK_BOX(box), GTK_WIDGET(status_label));

    gtk_window_set_child(GTK_WINDOW(window), box);
    gtk_window_present(GTK_WINDOW(window));
    gtk_widget_grab_focus(entry);
}

int main(int argc, char **argv) {
    GtkApplication *app = gtk_application_new("org.zeblo.Gtk4App", G_APPLICATION_NON_UNIQUE);
    g_set_prgname("zeblo-gtk4app");
    g_signal_connect(app, "activate", G_CALLBACK(activate), NULL);
    int status = g_application_run(G_APPLICATION(app), argc, argv);
    g_object_unref(app);
    return status;
}
