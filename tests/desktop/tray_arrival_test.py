"""Panels that come late, go, come back, or never come: the program stays within reach."""

from desktop import Item, PATIENCE, Watcher, host, run_tests, stays, wait_until


def without_a_tray_the_main_window_opens(desktop):
    desktop.write_hosts([host("web")])
    desktop.start_program()
    wait_until(desktop.windows, "the main window opens")


def with_a_tray_no_window_opens(desktop):
    watcher = Watcher(desktop)
    desktop.start_program()
    watcher.wait_for_item()
    stays(lambda: not desktop.windows(), "no window")


def a_watcher_that_comes_late_gets_the_icon(desktop):
    desktop.write_hosts([host("web")])
    desktop.start_program()
    wait_until(desktop.windows, "the main window opens")
    watcher = Watcher(desktop)
    item = Item(desktop, watcher.wait_for_item())
    assert "web" in item.texts()


def a_watcher_without_a_panel_counts_once_the_panel_has_come(desktop):
    watcher = Watcher(desktop, has_host=False)
    desktop.start_program()
    wait_until(desktop.windows, "the main window opens")
    assert not watcher.items
    watcher.announce_host()
    watcher.wait_for_item()


def a_watcher_that_restarts_gets_the_icon_again(desktop):
    desktop.write_hosts([host("web")])
    desktop.start_program()
    watcher = Watcher(desktop)
    watcher.wait_for_item()
    for _ in range(2):
        watcher.stop()
        watcher = Watcher(desktop)
        item = Item(desktop, watcher.wait_for_item())
        assert "web" in item.texts()
        assert len(watcher.items) == 1


def start_trayer(desktop):
    return desktop.start("trayer", "--edge", "top", "--align", "left", "--width", "20", "--height", "32")


def shapes(desktop):
    """Position and size of whatever the program shows."""
    found = []
    for window in desktop.run("sh", "-c", "xdotool search --onlyvisible --class '^velmora$' || true").split():
        lines = desktop.run("sh", "-c", f"xdotool getwindowgeometry --shell {window} || true").splitlines()
        shape = dict(line.split("=") for line in lines)
        if shape:
            found.append({key: int(value) for key, value in shape.items()})
    return found


def icon_position(desktop):
    """The middle of the icon in the panel, or nothing."""
    for shape in shapes(desktop):
        if shape["HEIGHT"] <= 48:
            return shape["X"] + shape["WIDTH"] // 2, shape["Y"] + shape["HEIGHT"] // 2
    return None


def menu_is_open(desktop):
    return any(shape["HEIGHT"] > 48 for shape in shapes(desktop))


def click_icon(desktop, button):
    x, y = wait_until(lambda: icon_position(desktop), "the icon is in the panel")
    desktop.run("xdotool", "mousemove", str(x), str(y), "click", str(button))


def an_embedding_panel_shows_icon_and_menu(desktop):
    start_trayer(desktop)
    wait_until(lambda: "trayer" in desktop.run("xwininfo", "-root", "-tree"), "the panel is there")
    desktop.write_hosts([host("web & mail_x")])
    program = desktop.start_program()
    wait_until(lambda: icon_position(desktop), "the icon is in the panel")
    assert not desktop.windows(), "with a tray no window opens"
    for button in (1, 3):
        click_icon(desktop, button)
        wait_until(lambda: menu_is_open(desktop), f"button {button} opens the menu")
        desktop.run("xdotool", "key", "Escape")
        wait_until(lambda: not menu_is_open(desktop), "the menu closes")
    click_icon(desktop, 1)
    wait_until(lambda: menu_is_open(desktop), "the menu opens")
    desktop.run("xdotool", "key", "Up", "Return")  # the last entry quits
    assert program.wait(PATIENCE) == 0


def an_embedding_panel_that_comes_late_and_restarts_gets_the_icon(desktop):
    desktop.start_program()
    wait_until(desktop.windows, "the main window opens")
    for _ in range(2):
        panel = start_trayer(desktop)
        wait_until(lambda: icon_position(desktop), "the icon is in the panel")
        panel.terminate()
        panel.wait()
        wait_until(lambda: not icon_position(desktop), "the icon goes with the panel")


if __name__ == "__main__":
    run_tests(
        without_a_tray_the_main_window_opens,
        with_a_tray_no_window_opens,
        a_watcher_that_comes_late_gets_the_icon,
        a_watcher_without_a_panel_counts_once_the_panel_has_come,
        a_watcher_that_restarts_gets_the_icon_again,
        an_embedding_panel_shows_icon_and_menu,
        an_embedding_panel_that_comes_late_and_restarts_gets_the_icon,
    )
