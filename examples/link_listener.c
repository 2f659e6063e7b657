/* A program of the unit that wants to know whether mobile data works: it has a window, registers it with the telephone
 * program and prints every change. Needs nothing but libsystemd:
 *
 *     cc link_listener.c -o link_listener $(pkg-config --cflags --libs libsystemd)
 *     ./link_listener [NUMBER]        ends after that many notifications; without it, with the telephone program
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <systemd/sd-bus.h>

#define WM_USER 0x0400u
#define ADD_LISTENER (WM_USER + 1000u)
#define REMOVE_LISTENER (WM_USER + 1001u)
#define LINK_NOTIFICATION (WM_USER + 542u)

#define PHONE "org.varkel.window.W3Gwindow" /* the bus name of whoever has the window "3Gwindow" */
#define WINDOWS "/org/varkel/window"

static unsigned long wanted; /* 0 = all */
static unsigned long heard;
static int gone;

/* Somebody posts a message to our window. */
static int on_post(sd_bus_message *call, void *userdata, sd_bus_error *error) {
    uint32_t id, status, reason;
    int result = sd_bus_message_read(call, "uuu", &id, &status, &reason);
    (void)userdata;
    (void)error;
    if (result < 0) return result;
    if (id == LINK_NOTIFICATION) {
        printf("%s, reason %u\n", status == 1 ? "data works" : "no data", reason);
        fflush(stdout);
        heard++;
    }
    return sd_bus_reply_method_return(call, NULL);
}

static const sd_bus_vtable window[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Post", "uuu", "", on_post, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

/* The name of the telephone program has another owner, or none any more. */
static int on_owner(sd_bus_message *signal, void *userdata, sd_bus_error *error) {
    const char *name, *before, *after;
    (void)userdata;
    (void)error;
    if (sd_bus_message_read(signal, "sss", &name, &before, &after) >= 0 && *after == '\0') gone = 1;
    return 0;
}

/* The handle of our one window, /org/varkel/window/1: the number of our bus name (":1.42"), then the window's. */
static uint32_t own_handle(sd_bus *bus) {
    const char *name = NULL;
    if (sd_bus_get_unique_name(bus, &name) < 0 || strncmp(name, ":1.", 3) != 0) return 0;
    return (uint32_t)strtoul(name + 3, NULL, 10) << 8 | 1u;
}

/* Posts to the window with that handle. */
static int post(sd_bus *bus, uint32_t to, uint32_t id, uint32_t wparam) {
    char name[32], path[64];
    snprintf(name, sizeof name, ":1.%u", to >> 8);
    snprintf(path, sizeof path, WINDOWS "/%u", to & 0xFFu);
    return sd_bus_call_method(bus, name, path, "org.varkel.Window1", "Post", NULL, NULL, "uuu", id, wparam, 0u);
}

static int listen_to(sd_bus *bus, uint32_t phone) {
    int result = post(bus, phone, ADD_LISTENER, own_handle(bus));
    while (result >= 0 && !gone && (wanted == 0 || heard < wanted)) {
        result = sd_bus_process(bus, NULL);
        if (result == 0) result = sd_bus_wait(bus, UINT64_MAX);
    }
    if (result >= 0 && !gone) result = post(bus, phone, REMOVE_LISTENER, own_handle(bus));
    return result;
}

int main(int argc, char **argv) {
    sd_bus *bus = NULL;
    sd_bus_message *answer = NULL;
    uint32_t phone = 0;
    int result;
    wanted = argc > 1 ? strtoul(argv[1], NULL, 10) : 0;
    result = sd_bus_open_user(&bus);
    if (result >= 0)
        result = sd_bus_add_object_vtable(bus, NULL, WINDOWS "/1", "org.varkel.Window1", window, NULL);
    if (result >= 0)
        result = sd_bus_add_match(bus, NULL,
                                  "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                                  "arg0='" PHONE "'",
                                  on_owner, NULL);
    if (result >= 0)
        result = sd_bus_call_method(bus, PHONE, WINDOWS, "org.varkel.Windows1", "FindWindow", NULL, &answer, "s",
                                    "3Gwindow");
    if (result >= 0) result = sd_bus_message_read(answer, "u", &phone);
    if (result >= 0) result = listen_to(bus, phone);
    if (result < 0) fprintf(stderr, "link_listener: %s\n", strerror(-result));
    sd_bus_message_unref(answer);
    sd_bus_flush_close_unref(bus);
    return result < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}
