#!/usr/bin/env python3
"""Retouches a drawn portrait in a real browser: studioPage.py ZEL [FOLDER-FOR-SCREENSHOTS]

Ends with status 77 where Chromium, its driver or selenium are not installed."""
import json
import os
import shutil
import sys
import time
import unittest

from studioServer import Studio, write_grey_png

PROGRAM = sys.argv.pop(1)
SHOTS = sys.argv.pop(1) if len(sys.argv) > 1 and not sys.argv[1].startswith("-") else None
CHROMIUM, DRIVER = shutil.which("chromium"), shutil.which("chromedriver")
try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
except ImportError:
    webdriver = None

# Notes what the page sends, so that the command can be given the same.
LISTEN = """
window.sent = {};
const send = window.fetch;
window.fetch = (path, options) => {
  if (options) window.sent[path.split('?')[0]] = {query: path.split('?')[1], body: options.body};
  return send(path, options);
};"""


def browser(width=1280, height=720, scale=1, dark=True):
    options = webdriver.ChromeOptions()
    options.binary_location = CHROMIUM
    for word in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run"):
        options.add_argument(word)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    driver = webdriver.Chrome(service=Service(DRIVER), options=options)
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                           {"width": width, "height": height, "deviceScaleFactor": scale, "mobile": False})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})
    return driver


class StudioPage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.studio = Studio(PROGRAM, {"portrait.png": ("480x640", 7), "other.png": ("300x400", 2)})
        cls.driver = browser()
        cls.driver.set_script_timeout(60)

    @classmethod
    def tearDownClass(cls):
        cls.driver.quit()
        status, said, left = cls.studio.end()
        assert (status, left) == (0, []), (status, said, left)

    def setUp(self):
        self.driver.get("about:blank")
        self.driver.get(self.studio.address)
        self.wait("return document.querySelectorAll('#film li').length >= 2")
        self.driver.execute_script(LISTEN)
        self.open("portrait.png")

    def tearDown(self):
        problems = [entry["message"] for entry in self.driver.get_log("browser") if entry["level"] == "SEVERE"]
        self.assertEqual(problems, [])
        if SHOTS:
            self.driver.save_screenshot(os.path.join(SHOTS, self.id().rpartition(".")[2] + ".png"))

    # ---- Hands ----

    def js(self, code, *values):
        return self.driver.execute_script(code, *values)

    def wait(self, condition, seconds=60):
        end = time.time() + seconds
        while not self.js(condition):
            self.assertLess(time.time(), end, condition)
            time.sleep(0.05)

    def settle(self):
        """Until what is shown is what the newest settings give."""
        time.sleep(0.1)
        self.wait("return !document.getElementById('status').classList.contains('busy')")

    def open(self, name):
        self.js("document.querySelector(`#film li[data-name='${arguments[0]}'] button`).click()", name)
        self.wait(f"return document.title.startsWith('{name}')")
        self.wait("return /face/.test(document.getElementById('status').textContent)")
        self.settle()

    def keys(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def control(self, key):
        ActionChains(self.driver).key_down(Keys.CONTROL).send_keys(key).key_up(Keys.CONTROL).perform()

    def add(self, words):
        self.js("document.activeElement.blur()")
        self.keys("a")
        self.keys(words, Keys.ENTER)
        self.settle()

    def press(self, words, within="body"):
        self.js("[...document.querySelectorAll(`${arguments[1]} button`)].find((each) => each.offsetParent !== null && "
                "[each.textContent, each.getAttribute('aria-label')].includes(arguments[0])).click()", words, within)
        self.settle()

    def drag(self, *places):
        """Through places of the picture, in fractions of it."""
        view = self.driver.find_element(By.ID, "view")
        width, height = self.js("const box = document.getElementById('view').getBoundingClientRect();"
                                "return [box.width, box.height]")
        scale = min((width - 48) / 480, (height - 48) / 640, 1)
        hand = ActionChains(self.driver, duration=30)
        for i, (x, y) in enumerate(places):
            hand.move_to_element_with_offset(view, round((x - 0.5) * 480 * scale), round((y - 0.5) * 640 * scale))
            if i == 0:
                hand.click_and_hold()
        hand.release().perform()
        self.settle()

    def done(self):
        self.js("document.activeElement.blur()")
        self.keys(Keys.ESCAPE)
        self.settle()

    def save(self, name):
        self.js("document.activeElement.blur()")
        self.control("s")
        field = self.driver.find_element(By.CSS_SELECTOR, "dialog input[type=text]")
        field.clear()
        field.send_keys(name, Keys.ENTER)
        self.wait("return !document.querySelector('dialog')")
        return self.studio.bytes(name)

    def sent(self, path):
        return json.loads(self.js("return window.sent[arguments[0]].body", path))

    def by_command(self, effect, *words, source="portrait.png"):
        out = self.studio.path("by-command.png")
        self.studio.zel("apply", effect, self.studio.path(source), "-o", out, *words)
        with open(out, "rb") as file:
            result = file.read()
        os.remove(out)
        return result

    def steps(self):
        return self.js("return [...document.querySelectorAll('.card .title span')].map((each) => each.textContent)")

    # ---- What a photographer does ----

    def test_an_effect_is_saved_as_the_command_saves_it(self):
        self.add("natural smoothing")
        number = self.driver.find_element(By.CSS_SELECTOR, ".card.open input[aria-label^=Radius].number")
        number.send_keys(Keys.CONTROL + "a")
        number.send_keys("9")
        self.settle()
        self.assertEqual(self.save("smooth.png"), self.by_command("nature-smooth", "--set", "radius=9"))

    def test_a_dragged_landmark_moves_what_follows_the_face(self):
        self.add("enlarge eyes")
        as_found = self.save("found.png")
        self.assertEqual(as_found, self.by_command("auto-zoom-eye"))
        self.keys("f")
        points = self.sent("api/preview")["chain"]["faces"]
        self.assertIsNone(points)
        faces = self.studio.ask(f"api/faces?id={self.sent('api/preview')['id']}")["faces"]["faces"]
        x, y = faces[0]["points"][24]
        self.drag((x, y), (x + 0.03, y + 0.04))
        self.done()
        moved = self.sent("api/preview")["chain"]["faces"]
        self.assertNotEqual(moved["faces"][0]["points"][24], [x, y])
        path = os.path.join(self.studio.scratch, "moved.json")
        with open(path, "w", encoding="utf-8") as file:
            json.dump(moved, file)
        saved = self.save("moved.png")
        self.assertNotEqual(saved, as_found)
        self.assertEqual(saved, self.by_command("auto-zoom-eye", "--faces", path))

    def test_two_eyes_place_a_face_where_none_was_found(self):
        self.keys("f")
        self.press("Remove face")
        self.wait("return /No face/.test(document.getElementById('status').textContent)")
        self.press("Place by two eyes")
        for x in (0.3, 0.5):
            self.drag((x, 0.4))
        self.wait("return /1 face/.test(document.getElementById('status').textContent)")
        self.done()
        self.add("enlarge eyes")
        points = self.sent("api/preview")["chain"]["faces"]["faces"][0]["points"]
        for point, x in ((24, 0.3), (70, 0.5)):
            self.assertAlmostEqual(points[point][0], x, delta=0.005)
            self.assertAlmostEqual(points[point][1], 0.4, delta=0.005)

    def test_a_painted_mask_is_filled(self):
        self.add("fill a mask")
        self.drag((0.2, 0.2), (0.3, 0.22), (0.35, 0.3))
        self.done()
        plane = self.js("const {query, body} = window.sent['api/plane']; return [query, [...body]]")
        size = dict(pair.split("=") for pair in plane[0].split("&"))
        self.assertEqual((size["width"], size["height"]), ("480", "640"))
        self.assertGreater(sum(sample > 0 for sample in plane[1]), 500)
        mask = os.path.join(self.studio.scratch, "mask.png")
        write_grey_png(mask, 480, 640, plane[1])
        self.assertEqual(self.save("filled.png"), self.by_command("inpaint", "--mask", mask))

    def test_a_drag_of_the_brush_is_the_commands(self):
        self.add("slimming brush")
        self.drag((0.3, 0.6), (0.4, 0.6))
        self.drag((0.7, 0.6), (0.6, 0.6))
        self.done()
        self.assertEqual(self.steps(), ["Slimming brush"] * 2)
        self.control("z")
        self.settle()
        self.assertEqual(self.steps(), ["Slimming brush"])
        (step,) = self.sent("api/preview")["chain"]["steps"]
        values = [word for name, text in step["values"].items() for word in ("--set", f"{name}={text}")]
        self.assertAlmostEqual(float(step["values"]["startX"]), 0.3, delta=0.01)
        self.assertEqual(self.save("slim.png"), self.by_command("slim-face", *values))

    def test_a_chain_is_ordered_switched_and_undone_by_keys(self):
        for words in ("natural smoothing", "sharpen", "vignette"):
            self.add(words)
        ActionChains(self.driver).key_down(Keys.ALT).send_keys(Keys.ARROW_UP).key_up(Keys.ALT).perform()
        self.assertEqual(self.steps(), ["Natural smoothing", "Vignette", "Sharpen or soften"])
        self.keys(Keys.DELETE)
        self.assertEqual(self.steps(), ["Natural smoothing", "Sharpen or soften"])
        self.press("Switch Sharpen or soften off")
        self.assertEqual(self.save("one.png"), self.by_command("nature-smooth"))
        for _ in range(3):
            self.js("document.activeElement.blur()")
            self.control("z")
        self.assertEqual(self.steps(), ["Natural smoothing", "Sharpen or soften", "Vignette"])
        self.press("Remove all")
        self.assertEqual(self.steps(), [])

    def test_the_picture_can_be_worked_on_without_a_pointer(self):
        self.add("enlarging brush")
        self.js("document.getElementById('view').focus()")
        self.keys(Keys.ARROW_LEFT * 3, Keys.ARROW_UP * 4, " ", " ")
        self.settle()
        (step,) = self.sent("api/preview")["chain"]["steps"]
        self.assertLess(float(step["values"]["centerX"]), 0.5)
        self.assertLess(float(step["values"]["centerY"]), 0.5)

    def test_a_dropped_picture_opens_and_a_broken_one_is_told(self):
        field = self.driver.find_element(By.CSS_SELECTOR, "#film input[type=file]")
        dropped = os.path.join(self.studio.scratch, "dropped.png")
        shutil.copy(self.studio.path("other.png"), dropped)
        field.send_keys(dropped)
        self.wait("return document.title.startsWith('dropped.png')")
        self.add("vignette")
        self.assertEqual(self.save("from-dropped.png"), self.by_command("vignette", source="other.png"))

    def test_a_folder_is_worked_through(self):
        self.add("vignette")
        self.press("Apply to folder")
        self.press("Start", "dialog")
        self.wait("return /Done/.test(document.querySelector('dialog').textContent)")
        with open(self.studio.path("retouched/other.png"), "rb") as file:
            self.assertEqual(file.read(), self.by_command("vignette", source="other.png"))

    def test_full_size_shows_where_the_screen_has_less(self):
        self.studio.zel("portrait", "-o", self.studio.path("large.png"), "--size", "3000x4000", "--seed", "3")
        self.driver.get(self.studio.address)
        self.wait("return document.querySelectorAll('#film li').length >= 3")
        self.driver.execute_script(LISTEN)
        self.open("large.png")
        self.add("natural smoothing")
        self.js("document.activeElement.blur()")
        self.keys("1")
        self.wait("return 'api/region' in window.sent && !JSON.parse(window.sent['api/region'].body).before")
        self.settle()
        region = self.sent("api/region")
        self.assertEqual(region["rect"]["width"], region["width"], "at 100 % every pixel is its own")
        os.remove(self.studio.path("large.png"))

    def test_every_control_has_a_name_and_nothing_is_cut(self):
        for words in ("depth of field", "brighten eyes"):
            self.add(words)
        for width, height in ((1280, 720), (820, 1180), (1024, 768)):
            self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
                "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
            time.sleep(0.2)
            nameless = self.js("""return [...document.querySelectorAll('button, input, select, [role]')]
              .filter((each) => each.offsetParent !== null && !each.getAttribute('aria-label') && !each.textContent.trim()
                && !each.closest('label') && each.getAttribute('role') !== 'status').map((each) => each.outerHTML)""")
            self.assertEqual(nameless, [])
            cut = self.js("""return [...document.querySelectorAll('#bar button, #panel button, #panel .row, #tools button')]
              .filter((each) => each.offsetParent !== null).filter((each) => {
                const box = each.getBoundingClientRect(), around = each.closest('#bar, #panel, #tools').getBoundingClientRect();
                return box.left < around.left - 1 || box.right > around.right + 1 || each.scrollWidth > each.clientWidth + 1;
              }).map((each) => each.outerHTML.slice(0, 120))""")
            self.assertEqual(cut, [], (width, height))
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": 1280, "height": 720, "deviceScaleFactor": 1, "mobile": False})


if __name__ == "__main__":
    if not (webdriver and CHROMIUM and DRIVER):
        print("there is no Chromium with its driver, or no selenium")
        sys.exit(77)
    unittest.main()
