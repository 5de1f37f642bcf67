#!/usr/bin/env python3
"""Talks to a running studio as friends and as strangers would: studioRequests.py ZEL"""
import os
import sys
import threading
import time
import unittest

from studioServer import Studio

PROGRAM = sys.argv.pop(1)
CHAIN = {"steps": [{"effect": "nature-smooth", "values": {"radius": "6"}}, {"effect": "auto-zoom-eye"}]}


class StudioRequests(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.studio = Studio(PROGRAM, {"a.png": ("300x400", 1), "b.png": ("200x260", 2)})

    @classmethod
    def tearDownClass(cls):
        status, said, left = cls.studio.end()
        assert status == 0, (status, said)
        assert left == [], left

    def open(self, name, side=640):
        return self.studio.tell("api/open", {"name": name, "side": side})

    def refused(self, method, path, body=b"", status=(400, 403, 404, 405, 411, 413, 415, 416), **headers):
        fields = {name.replace("_", "-"): value for name, value in headers.items()}
        got, answer = self.studio.request(method, path, body, fields)
        self.assertIn(got, status if isinstance(status, tuple) else (status,), (method, path, headers, answer[:200]))
        self.assertNotIn(b"PNG", answer)
        return answer

    def test_saves_what_the_command_writes(self):
        picture = self.open("a.png")
        self.studio.tell("api/save", {"id": picture["id"], "chain": CHAIN, "name": "saved.png"})
        steps = [self.studio.path(name) for name in ("a.png", "one.png", "two.png")]
        self.studio.zel("apply", "nature-smooth", steps[0], "-o", steps[1], "--set", "radius=6")
        faces = os.path.join(self.studio.scratch, "faces.json")
        self.studio.zel("faces", steps[0], "-o", faces)  # the studio's are those of the picture as it was read
        self.studio.zel("apply", "auto-zoom-eye", steps[1], "-o", steps[2], "--faces", faces)
        self.assertEqual(self.studio.bytes("saved.png"), self.studio.bytes("two.png"))
        self.assertNotEqual(self.studio.bytes("saved.png"), self.studio.bytes("a.png"))

    def test_keeps_files_that_are_there(self):
        picture, before = self.open("a.png"), self.studio.bytes("b.png")
        order = {"id": picture["id"], "chain": CHAIN, "name": "b.png"}
        path = f"/{self.studio.secret}/api/save"
        self.refused("POST", path, order, 409)
        self.assertEqual(self.studio.bytes("b.png"), before)
        self.refused("POST", path, {**order, "name": "a.png", "replace": True}, 409)

    def test_works_through_a_folder_and_leaves_out_what_belongs_to_one_picture(self):
        with open(self.studio.path("broken.png"), "wb") as file:
            file.write(b"no picture")
        steps = CHAIN["steps"] + [{"effect": "inpaint", "mask": "of another picture"}]
        self.studio.tell("api/batch", {"chain": {"steps": steps}, "names": ["a.png", "broken.png", "b.png"],
                                       "folder": "out"})
        while (state := self.studio.ask("api/batch"))["running"]:
            time.sleep(0.05)
        self.assertEqual((state["done"], state["left"]), (2, ["Fill a mask"]))
        self.assertEqual([fault["name"] for fault in state["faults"]], ["broken.png"])
        self.assertEqual(sorted(os.listdir(self.studio.path("out"))), ["a.png", "b.png"])
        self.studio.tell("api/batch", {"chain": CHAIN, "names": ["a.png"], "folder": "out"})
        while (state := self.studio.ask("api/batch"))["running"]:
            time.sleep(0.05)
        self.assertEqual((state["done"], state["skipped"]), (0, 1))

    def test_keeps_chains_as_the_commands_recipes(self):
        order = {"name": "soft", "chain": {"steps": CHAIN["steps"] + [{"effect": "sharp", "off": True}]}}
        self.assertEqual(self.studio.tell("api/recipe", order)["name"], "soft.json")
        self.assertEqual(self.studio.ask("api/folder")["recipes"], ["soft.json"])
        kept = self.studio.ask("api/recipe?name=soft.json")["steps"]
        self.assertEqual([step["effect"] for step in kept], ["nature-smooth", "auto-zoom-eye"])
        self.studio.zel("apply", "--recipe", self.studio.path("soft.json"), self.studio.path("a.png"), "-o",
                        self.studio.path("by-recipe.png"))
        picture = self.open("a.png")
        self.studio.tell("api/save", {"id": picture["id"], "chain": {"steps": kept}, "name": "by-studio.png"})
        self.assertEqual(self.studio.bytes("by-recipe.png"), self.studio.bytes("by-studio.png"))
        with open(self.studio.path("other.json"), "w", encoding="utf-8") as file:
            file.write("{}")
        self.refused("POST", f"/{self.studio.secret}/api/recipe", {**order, "name": "other"}, 422)

    def test_takes_a_dropped_file_for_the_page_alone(self):
        path = f"/{self.studio.secret}/api/upload?name=dropped.png"
        status, _ = self.studio.request("POST", path, self.studio.bytes("b.png"))
        self.assertEqual(status, 200)
        self.assertEqual(self.open("dropped.png")["width"], 200)
        self.assertFalse(os.path.exists(self.studio.path("dropped.png")))
        self.studio.request("POST", path, b"\x89PNG but not for long")
        self.refused("POST", f"/{self.studio.secret}/api/open", {"name": "dropped.png", "side": 640}, 422)

    def test_newer_previews_cancel_older_ones(self):
        picture = self.open("a.png")
        statuses = []

        def preview(radius):
            chain = {"steps": [{"effect": "bright", "values": {"radius": str(radius)}}] * 8}
            statuses.append(self.studio.request("POST", f"/{self.studio.secret}/api/preview",
                                                {"id": picture["id"], "chain": chain})[0])

        threads = [threading.Thread(target=preview, args=(radius,)) for radius in range(10, 30)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(set(statuses) - {200, 204}, set())
        self.assertIn(200, statuses)
        self.assertIn(204, statuses)

    def test_turns_strangers_away(self):
        inside = f"/{self.studio.secret}/api/folder"
        self.refused("GET", "/")
        self.refused("GET", "/api/folder")
        self.refused("GET", "/" + "0" * 32 + "/api/folder")
        self.refused("GET", inside, Host="rebound.example")
        self.refused("GET", inside, Origin="http://other.example")
        self.refused("GET", inside, Sec_Fetch_Site="cross-site")
        order = f"/{self.studio.secret}/api/open"
        self.refused("POST", order, {"name": "a.png", "side": 640}, Origin="http://other.example")
        self.refused("POST", order, {"name": "a.png", "side": 640}, Origin=None)
        self.refused("POST", order, {"name": "a.png", "side": 640}, Content_Type="text/plain")
        self.refused("POST", order, {"name": "a.png", "side": 640}, Content_Type="multipart/form-data; boundary=x")
        self.refused("OPTIONS", order, Origin="http://other.example")

    def test_no_path_leads_out_of_the_folder(self):
        outside = os.path.join(self.studio.scratch, "outside.png")
        self.studio.zel("portrait", "-o", outside, "--size", "100x130")
        os.symlink(outside, self.studio.path("link.png"))
        base = f"/{self.studio.secret}"
        for name in ("../outside.png", "..%2Foutside.png", "%2e%2e/outside.png", "%2Fetc%2Fpasswd", outside, "link.png",
                     "..%5Coutside.png", "a.png%00.jpg", "", "."):
            self.refused("GET", f"{base}/api/thumbnail?name={name}")
        for path in ("/../../etc/passwd", "/%2e%2e/%2e%2e/etc/passwd", "//etc/passwd", "/api/../../x", "/main.js/..%2f..%2fx"):
            self.refused("GET", base + path)
        picture = self.open("a.png")
        for name in ("../escaped.png", "/tmp/escaped.png", "link.png", ".hidden.png", "a\\b.png", "x.sh", "", "sub/x.png"):
            self.refused("POST", f"{base}/api/save", {"id": picture["id"], "chain": CHAIN, "name": name, "replace": True})
        for folder in ("..", "../out", "/tmp", "", ".git"):
            self.refused("POST", f"{base}/api/batch", {"chain": CHAIN, "names": ["a.png"], "folder": folder},
                         ) if folder in ("",) else self.batch_fails(folder)
        self.assertFalse(os.path.exists(os.path.join(self.studio.scratch, "escaped.png")))
        self.refused("POST", f"{base}/api/preview", {"id": picture["id"], "chain": {"steps": [
            {"effect": "scenario", "values": {"cube": "../secret.cube"}}]}}, (400, 404))

    def batch_fails(self, folder):
        self.studio.tell("api/batch", {"chain": CHAIN, "names": ["a.png"], "folder": folder})
        while (state := self.studio.ask("api/batch"))["running"]:
            time.sleep(0.02)
        self.assertEqual((state["done"], len(state["faults"])), (0, 1), (folder, state))

    def test_outlives_giant_bodies_and_nonsense(self):
        order = f"/{self.studio.secret}/api/open"
        for length in ("99999999999999", "18446744073709551617", "-5", "1e3", "0x10", "5, 5"):
            self.refused("POST", order, b"", Content_Length=length, Content_Type="application/json")
        self.refused("POST", f"/{self.studio.secret}/api/upload?name=x.png", b"", Content_Length="999999999999")
        self.refused("POST", order, b"", Transfer_Encoding="chunked", Content_Type="application/json")
        self.refused("POST", order, b"x", Content_Encoding="gzip", Content_Type="application/json")
        for body in (b"", b"{", b"[]", b"null", b'{"name": 3}', b'{"name": "a.png", "side": 1e99}',
                     b'{"name": "a.png", "side": null}', b"\xff\xfe", b"[" * 100000):
            self.refused("POST", order, body, Content_Type="application/json")
        picture = self.open("a.png")
        for rect in ({"left": 0, "top": 0, "width": 400, "height": 1}, {"left": -1, "top": 0, "width": 1, "height": 1},
                     {"left": 299, "top": 399, "width": 2, "height": 2}, {"left": 0}, 7):
            self.refused("POST", f"/{self.studio.secret}/api/region",
                         {"id": picture["id"], "chain": CHAIN, "rect": rect, "width": 1, "height": 1})
        for query in ("width=0&height=1", "width=9&height=9", "width=99999&height=99999", "height=1", "width=a&height=1"):
            self.refused("POST", f"/{self.studio.secret}/api/plane?{query}", b"x")
        for noise in (b"\0" * 4096, b"GET\r\n\r\n", b"GET / HTTP/9.9\r\n" + b"A: b\r\n" * 5000 + b"\r\n",
                      b"GET /" + b"a" * 100000 + b" HTTP/1.1\r\n\r\n", os.urandom(3000)):
            self.studio.raw(noise, half=True)
        self.assertIn("a.png", self.studio.ask("api/folder")["pictures"])

    def test_the_page_keeps_to_itself(self):
        answer = self.studio.raw(f"GET /{self.studio.secret}/ HTTP/1.1\r\nHost: {self.studio.host}\r\n\r\n".encode())
        head = answer.partition(b"\r\n\r\n")[0].decode().lower()
        for field in ("default-src 'none'", "frame-ancestors 'none'", "x-content-type-options: nosniff",
                      "referrer-policy: no-referrer", "cache-control: no-store"):
            self.assertIn(field, head)
        self.assertNotIn("access-control-allow", head)


if __name__ == "__main__":
    unittest.main()
