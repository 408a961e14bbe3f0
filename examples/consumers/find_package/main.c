/* Prints the running applications as JSON. */
#include <stdio.h>
#include <zeblo/zeblo.h>

int main(void) {
    const char *apps = zeblo_get_running_apps();
    if (apps == NULL) return 1;
    puts(apps);
    zeblo_free_string(apps);
    return 0;
}
