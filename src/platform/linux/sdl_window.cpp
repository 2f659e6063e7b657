#include "platform/linux/sdl_window.h"

#include <SDL.h>
#include <algorithm>
#include <unistd.h>
#include <utility>

#include "platform/linux/sdl_connection.h"

namespace varkel {

namespace {

constexpr int rowBytes = Display::screen.width * 4;
constexpr Rect wholeScreen{0, 0, Display::screen.width, Display::screen.height};

constexpr std::size_t PixelAt(int x, int y) {
    return static_cast<std::size_t>(y) * Display::screen.width + static_cast<std::size_t>(x);
}

// The server went in the middle of a call that cannot be left. It runs on the window's thread, the only one
// that speaks with the server.
thread_local std::function<void()> connectionLost;

[[noreturn]] void StayInTheCall() {
    connectionLost();
    for (;;)
        pause();
}

}  // namespace

SdlWindow::SdlWindow(std::shared_ptr<DisplayInput> input, bool fullScreen, ProblemSink onProblem,
                     std::shared_ptr<Event> opened)
    : m_input(std::move(input)),
      m_fullScreen(fullScreen),
      m_onProblem(std::move(onProblem)),
      m_opened(std::move(opened)),
      m_front(PixelAt(0, Display::screen.height)),
      m_touches(*m_input) {}

template <typename Change>
void SdlWindow::Order(const Change& change) {
    {
        std::lock_guard lock(m_mutex);
        change();
    }
    m_wake.Signal();
}

void SdlWindow::Draw(cairo_surface_t* picture, const Rect& part) {
    const unsigned char* const pixels = cairo_image_surface_get_data(picture);
    const int stride = cairo_image_surface_get_stride(picture);
    Order([&] {
        for (int y = part.y; y < part.Bottom(); ++y) {
            const auto* const row =
                reinterpret_cast<const std::uint32_t*>(pixels + std::ptrdiff_t{y} * stride);
            std::copy_n(row + part.x, part.width, m_front.data() + PixelAt(part.x, y));
        }
        m_orders.fresh = Union(m_orders.fresh, part);
    });
}

void SdlWindow::Show(bool show) {
    Order([&] { m_orders.show = show; });
}

void SdlWindow::SetTitle(std::string_view title) {
    Order([&] { m_orders.title = title; });
}

void SdlWindow::End() {
    Order([&] { m_orders.end = true; });
}

std::optional<std::string> SdlWindow::Fault() const {
    std::lock_guard lock(m_mutex);
    return m_fault;
}

void SdlWindow::Run() {
    connectionLost = [this] { Lost(); };
    const bool open = Open();
    if (!open) {
        std::lock_guard lock(m_mutex);
        m_fault = SDL_GetError();
    }
    m_opened->Set();
    if (open) Serve();
    if (!open || !Fault()) Close();
}

bool SdlWindow::Open() {
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) return false;
    OnConnectionLost(StayInTheCall);
    // SDL has no other way to a Wayland window.
    if (SDL_GetCurrentVideoDriver() == std::string_view("wayland"))
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "1");
    // A device that plays sounds comes and goes with each of them.
    SDL_EventState(SDL_AUDIODEVICEADDED, SDL_IGNORE);
    SDL_EventState(SDL_AUDIODEVICEREMOVED, SDL_IGNORE);
    SDL_Rect place{SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, Display::screen.width,
                   Display::screen.height};
    // Asked for as well, because a panel of its own may have no window manager to make a window larger.
    if (m_fullScreen) SDL_GetDisplayBounds(0, &place);
    constexpr Uint32 inAWindow = SDL_WINDOW_HIDDEN;
    constexpr Uint32 onAPanel = SDL_WINDOW_HIDDEN | SDL_WINDOW_FULLSCREEN_DESKTOP;
    m_window = SDL_CreateWindow("", place.x, place.y, place.w, place.h, m_fullScreen ? onAPanel : inAWindow);
    if (!m_window) return false;
    const auto connection = ConnectionOf(m_window);
    if (!connection) {
        SDL_SetError("there is no display server");
        return false;
    }
    m_connection = *connection;
    if (m_fullScreen) SDL_ShowCursor(SDL_DISABLE);
    return SDL_GetWindowSurface(m_window) != nullptr;
}

void SdlWindow::Close() {
    if (m_window) SDL_DestroyWindow(m_window);
    m_window = nullptr;
    if (SDL_WasInit(SDL_INIT_VIDEO) != 0) SDL_QuitSubSystem(SDL_INIT_VIDEO);
    // SDL keeps the last fault of each thread.
    SDL_TLSCleanup();
}

void SdlWindow::Lost() {
    const std::string fault = "the display server has gone";
    {
        std::lock_guard lock(m_mutex);
        m_fault = fault;
    }
    Report(m_onProblem, fault);
}

void SdlWindow::Serve() {
    while (CarryOut()) {
        bool handled = false;
        for (SDL_Event event; SDL_PollEvent(&event) != 0; handled = true)
            Handle(event);
        // An event that was handled may have led to something that is to be shown.
        if (!handled && !Wait()) return Lost();
    }
}

bool SdlWindow::Wait() {
    // On Wayland SDL itself repeats a key that is held, whenever it looks for events.
    constexpr std::chrono::milliseconds keyRepeat{30};
    pollfd waiting[] = {{m_connection, POLLIN, 0}, {m_wake.Get(), POLLIN, 0}};
    Poll(waiting, m_keyHeld ? keyRepeat : forever);
    m_wake.Clear();
    return (waiting[0].revents & (POLLHUP | POLLERR | POLLNVAL)) == 0;
}

bool SdlWindow::CarryOut() {
    Orders orders;
    {
        std::lock_guard lock(m_mutex);
        if (m_orders.end) return false;
        // What cannot be seen now is shown with the window.
        orders = std::exchange(m_orders, Orders{});
        if (!orders.show.value_or(m_shown)) m_orders.fresh = orders.fresh;
    }
    if (orders.title) SDL_SetWindowTitle(m_window, orders.title->c_str());
    if (orders.show && *orders.show != m_shown) {
        m_shown = *orders.show;
        m_shown ? SDL_ShowWindow(m_window) : SDL_HideWindow(m_window);
        if (m_shown) SDL_RaiseWindow(m_window);
    }
    if (m_shown && !orders.fresh.Empty()) Present(orders.fresh);
    return true;
}

void SdlWindow::Handle(const SDL_Event& event) {
    m_touches.Handle(event);
    if (event.type == SDL_KEYDOWN || event.type == SDL_KEYUP) m_keyHeld = event.type == SDL_KEYDOWN;
    if (event.type == SDL_FINGERDOWN) SDL_ShowCursor(SDL_DISABLE);
    if (event.type == SDL_MOUSEMOTION) SDL_ShowCursor(SDL_ENABLE);
    if (event.type == SDL_QUIT) m_input->Put(CloseRequest{});
    if (event.type != SDL_WINDOWEVENT) return;
    const Uint8 change = event.window.event;
    if (change == SDL_WINDOWEVENT_CLOSE) m_input->Put(CloseRequest{});
    if (change != SDL_WINDOWEVENT_EXPOSED && change != SDL_WINDOWEVENT_SIZE_CHANGED) return;
    std::lock_guard lock(m_mutex);
    m_orders.fresh = wholeScreen;
}

void SdlWindow::Place(const SDL_Surface& surface) {
    m_size = {surface.w, surface.h};
    m_origin = {(surface.w - Display::screen.width) / 2, (surface.h - Display::screen.height) / 2};
    m_touches.Place(m_size, m_origin);
}

void SdlWindow::Present(Rect part) {
    SDL_Surface* const surface = SDL_GetWindowSurface(m_window);
    if (!surface) return;
    if (m_size != Size{surface->w, surface->h}) {
        Place(*surface);
        SDL_FillRect(surface, nullptr, 0);
        SDL_UpdateWindowSurface(m_window);
        part = wholeScreen;
    }
    // A window that is too small shows the middle.
    part = Intersection(part, Rect{0, 0, surface->w, surface->h}.Moved(-m_origin.x, -m_origin.y));
    if (part.Empty()) return;
    const SDL_Rect there{part.x + m_origin.x, part.y + m_origin.y, part.width, part.height};
    auto* const to = static_cast<unsigned char*>(surface->pixels) + std::ptrdiff_t{there.y} * surface->pitch +
                     std::ptrdiff_t{there.x} * surface->format->BytesPerPixel;
    {
        std::lock_guard lock(m_mutex);
        SDL_ConvertPixels(part.width, part.height, SDL_PIXELFORMAT_RGB888,
                          m_front.data() + PixelAt(part.x, part.y), rowBytes, surface->format->format, to,
                          surface->pitch);
    }
    SDL_UpdateWindowSurfaceRects(m_window, &there, 1);
}

}  // namespace varkel
