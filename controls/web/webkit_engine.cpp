#include "controls/web/webkit_engine.h"

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <cstdlib>
#include <cstring>

namespace {

void OnDownloadStarted(WebKitWebContext*, WebKitDownload* download, gpointer) {
    webkit_download_cancel(download);
}

// The one context of every view, made with the first.
WebKitWebContext* SharedContext() {
    static WebKitWebContext* context = nullptr;
    if (context == nullptr) {
        context = webkit_web_context_new();
        // The sandbox can only be turned on before the first web process
        // starts. MELKORA_WEB_SANDBOX=0 turns it off where it cannot start
        // (a container without user namespaces).
        const char* sandbox = std::getenv("MELKORA_WEB_SANDBOX");
        bool on = sandbox == nullptr || std::strcmp(sandbox, "0") != 0;
        webkit_web_context_set_sandbox_enabled(context, on ? TRUE : FALSE);
        webkit_web_context_set_cache_model(context, WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
        g_signal_connect(context, "download-started", G_CALLBACK(OnDownloadStarted), nullptr);
    }
    return context;
}

class WebKitEngine : public SWebEngine {
public:
    explicit WebKitEngine(Events* events) : events(events) {
        WebKitSettings* settings = webkit_settings_new();
        webkit_settings_set_allow_file_access_from_file_urls(settings, FALSE);
        webkit_settings_set_allow_universal_access_from_file_urls(settings, FALSE);
        G_GNUC_BEGIN_IGNORE_DEPRECATIONS
        webkit_settings_set_enable_plugins(settings, FALSE);
        webkit_settings_set_enable_java(settings, FALSE);
        G_GNUC_END_IGNORE_DEPRECATIONS
        webkit_settings_set_javascript_can_open_windows_automatically(settings, FALSE);
        webkit_settings_set_default_charset(settings, "UTF-8");
        view = GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", SharedContext(),
                                       "settings", settings, nullptr));
        g_object_unref(settings);
        g_object_ref_sink(view);
        g_signal_connect(view, "decide-policy", G_CALLBACK(OnDecidePolicy), this);
        g_signal_connect(view, "load-changed", G_CALLBACK(OnLoadChanged), this);
        g_signal_connect(view, "load-failed", G_CALLBACK(OnLoadFailed), this);
        g_signal_connect(view, "notify::estimated-load-progress", G_CALLBACK(OnProgress), this);
        g_signal_connect(view, "notify::title", G_CALLBACK(OnTitle), this);
        g_signal_connect(view, "mouse-target-changed", G_CALLBACK(OnMouseTarget), this);
        g_signal_connect(view, "close", G_CALLBACK(OnClose), this);
        g_signal_connect(view, "script-dialog", G_CALLBACK(OnScriptDialog), this);
        gtk_widget_show(view);
    }

    ~WebKitEngine() override {
        g_signal_handlers_disconnect_by_data(view, this);
        webkit_web_view_stop_loading(WEBKIT_WEB_VIEW(view));
        g_object_unref(view);
    }

    void* GetWidget() override { return view; }

    bool Load(const char* url, bool /*history*/) override {
        // WebKit keeps every navigation in its back list; the flag has no
        // counterpart there.
        if (url == nullptr || url[0] == '\0') {
            return false;
        }
        webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), url);
        return true;
    }

    SString GetAddress() const override {
        const char* uri = webkit_web_view_get_uri(WEBKIT_WEB_VIEW(view));
        return uri != nullptr ? uri : "";
    }

    SString GetTitle() const override {
        const char* title = webkit_web_view_get_title(WEBKIT_WEB_VIEW(view));
        return title != nullptr ? title : "";
    }

    SString GetStatusText() const override { return statusText; }

    void SetSilent(bool on) override { silent = on; }

private:
    static gboolean OnDecidePolicy(WebKitWebView*, WebKitPolicyDecision* decision,
                                   WebKitPolicyDecisionType type, gpointer data) {
        auto* self = static_cast<WebKitEngine*>(data);
        switch (type) {
        case WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION: {
            WebKitNavigationAction* action =
                webkit_navigation_policy_decision_get_navigation_action(
                    WEBKIT_NAVIGATION_POLICY_DECISION(decision));
            const char* uri =
                webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
            g_object_ref(decision); // the parent may end this view while it answers
            bool cancel = self->events->OnBeforeNavigate(uri != nullptr ? uri : "");
            if (cancel) {
                webkit_policy_decision_ignore(decision);
            } else {
                webkit_policy_decision_use(decision);
            }
            g_object_unref(decision);
            return TRUE;
        }
        case WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION:
            webkit_policy_decision_ignore(decision);
            return TRUE;
        case WEBKIT_POLICY_DECISION_TYPE_RESPONSE:
            // What the view cannot show would be a download: refused.
            if (webkit_response_policy_decision_is_mime_type_supported(
                    WEBKIT_RESPONSE_POLICY_DECISION(decision)) == FALSE) {
                webkit_policy_decision_ignore(decision);
                return TRUE;
            }
            return FALSE;
        default:
            return FALSE;
        }
    }

    static void OnLoadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
        auto* self = static_cast<WebKitEngine*>(data);
        if (event == WEBKIT_LOAD_STARTED) {
            self->failed = false;
        } else if (event == WEBKIT_LOAD_FINISHED && !self->failed) {
            self->events->OnDocumentDone(false);
        }
    }

    static gboolean OnLoadFailed(WebKitWebView*, WebKitLoadEvent, gchar*, GError* error,
                                 gpointer data) {
        auto* self = static_cast<WebKitEngine*>(data);
        // A load stopped by a newer one or by a refused policy is no failure.
        if (g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) ||
            g_error_matches(error, WEBKIT_POLICY_ERROR,
                            WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE)) {
            return FALSE;
        }
        self->failed = true;
        self->events->OnDocumentDone(true);
        return FALSE;
    }

    static void OnProgress(GObject* object, GParamSpec*, gpointer data) {
        double progress = webkit_web_view_get_estimated_load_progress(WEBKIT_WEB_VIEW(object));
        static_cast<WebKitEngine*>(data)->events->OnProgress(
            static_cast<int>(progress * 100.0 + 0.5), 100);
    }

    static void OnTitle(GObject*, GParamSpec*, gpointer data) {
        static_cast<WebKitEngine*>(data)->events->OnTitleChanged();
    }

    static void OnMouseTarget(WebKitWebView*, WebKitHitTestResult* hit, guint, gpointer data) {
        auto* self = static_cast<WebKitEngine*>(data);
        const char* link = webkit_hit_test_result_context_is_link(hit)
                               ? webkit_hit_test_result_get_link_uri(hit)
                               : nullptr;
        SString text = link != nullptr ? link : "";
        if (text != self->statusText) {
            self->statusText = text;
            self->events->OnStatusTextChanged();
        }
    }

    static void OnClose(WebKitWebView*, gpointer data) {
        static_cast<WebKitEngine*>(data)->events->OnQuit();
    }

    static gboolean OnScriptDialog(WebKitWebView*, WebKitScriptDialog*, gpointer data) {
        return static_cast<WebKitEngine*>(data)->silent ? TRUE : FALSE;
    }

    Events* events;
    GtkWidget* view = nullptr;
    SString statusText;
    bool failed = false;
    bool silent = false;
};

} // namespace

std::unique_ptr<SWebEngine> CreateWebKitEngine(SWebEngine::Events* events) {
    if (events == nullptr || gdk_display_get_default() == nullptr) {
        return nullptr;
    }
    return std::make_unique<WebKitEngine>(events);
}
