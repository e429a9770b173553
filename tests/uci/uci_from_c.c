#include "uci/uci_from_c.h"

#include <string.h>
#include <uci.h>

int count_options_from_c(const char *confdir, const char *package, const char *section)
{
    struct uci_context *ctx = uci_alloc_context();
    struct uci_package *p = NULL;
    struct uci_element *e = NULL;
    struct uci_element *o = NULL;
    struct uci_ptr ptr;
    int count = 0;

    if (ctx == NULL) {
        return -1;
    }
    uci_set_confdir(ctx, confdir);
    uci_set_savedir(ctx, confdir);
    uci_set_conf2dir(ctx, NULL);
    if (uci_load(ctx, package, &p) == UCI_OK) {
        uci_foreach_element(&p->sections, e)
        {
            struct uci_section *s = uci_to_section(e);
            if (strcmp(s->e.name, section) != 0) {
                continue;
            }
            memset(&ptr, 0, sizeof(ptr));
            ptr.p = p;
            ptr.s = s;
            ptr.option = "added";
            ptr.value = "from C";
            if (uci_set(ctx, &ptr) != UCI_OK || (ptr.flags & UCI_LOOKUP_DONE) == 0) {
                count = -1;
                break;
            }
            uci_foreach_element(&s->options, o)
            {
                count += uci_to_option(o)->type == UCI_TYPE_STRING ? 1 : 100;
            }
        }
    }
    uci_free_context(ctx);
    return count;
}
