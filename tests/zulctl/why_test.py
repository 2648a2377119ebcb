"""Every cause that can be had from live routers, and what other commands say of it."""

import os
import signal

from control import IN_PARTITION, SHORT_LEASE, ControlTest
from processes import Program


class Why(ControlTest):
    domain = 67

    def check(self, expected, router, *arguments, options=(), **keywords):
        """Asks why; returns text and evidence."""
        status, rows = self.run_json("--discovery", "1", "-t", "0.7", *options, "why", router, *arguments, **keywords)
        self.assertEqual([row["cause"] for row in rows], [expected], rows)
        self.assertEqual(status, 0 if expected == "answers" else 4)
        return "\n".join([rows[0]["text"], *rows[0]["evidence"]])

    def test_each_cause_is_named_with_its_evidence(self):
        self.assertIn("no participant", self.check("nobody", "r1"))
        self.router("well")
        for name, fault in (("quiet", "--silent"), ("types", "--type-mismatch"), ("effort", "--best-effort"), ("mute", "--no-response-writer"),
                            ("federal", "--federation")):
            self.router(name, fault)
        for cause, name, fact in (
                ("answers", "well", "it answered after"), ("silent", "quiet", "no answer for 700 ms"),
                ("type_mismatch", "types", "CommandRequestOther"), ("incompatible_qos", "effort", "RELIABILITY: it offers BEST_EFFORT"),
                ("one_way", "mute", "response writer is not seen"), ("wrong_product", "federal", "use --federation"),
                ("no_such_name", "welt", "there are: well, ")):
            with self.subTest(cause):
                self.assertIn(fact, self.check(cause, name))
        self.check("answers", "federal", options=["--federation"])
        self.assertIn("-d 67", self.check("other_domain", "well", "--domains", "67-68", domain=68))
        # The other commands say the same, and do not send what could not be answered.
        status, rows = self.run_json("--discovery", "1", "-t", "0.7", "enable", "quiet,types,effort,mute,federal,welt,well")
        self.assertEqual(status, 4)
        self.assertEqual({row["router"]: row["message"].split(":")[0] for row in rows if row["status"] == "no_answer"},
                         {"quiet": "silent", "types": "type_mismatch", "effort": "incompatible_qos", "mute": "one_way",
                          "federal": "wrong_product", "welt": "no_such_name"})
        _, rows = self.run_json("--discovery", "1", "-t", "0.7", "list")
        self.assertEqual({row["router"]: (row["product"], row["answers"]) for row in rows},
                         {name: ("federation" if name == "federal" else "routing", name in ("well", "federal"))
                          for name in ("well", "quiet", "types", "effort", "mute", "federal")})
        self.router("quiet")  # of two with one name the silent one is explained
        self.assertIn("no answer for 700 ms", self.check("silent", "quiet"))

    def test_a_profile_file_may_put_both_ends_into_a_partition(self):
        inside = {"FASTRTPS_DEFAULT_PROFILES_FILE": self.file("profile.xml", IN_PARTITION)}
        self.router("r1", env=inside)
        self.assertIn("PARTITION: it is in a partition", self.check("incompatible_qos", "r1"))
        self.check("answers", "r1", env=os.environ | inside)

    def test_a_router_that_leaves_or_is_stopped_meanwhile_is_gone(self):
        for number, expected in ((signal.SIGTERM, "gone: it left 0 s ago"), (signal.SIGSTOP, "gone: nothing was heard of it for 2 s")):
            router = self.router("fleeting", "--silent", env={"FASTRTPS_DEFAULT_PROFILES_FILE": self.file("profile.xml", SHORT_LEASE)})
            with Program("zulctl", "-d", self.domain, "-t", "60", "get", "fleeting") as waiting:
                router.expect("kept back")
                router.signal(number)
                self.assertEqual(waiting.wait()[0], 4)
                self.assertIn(expected, waiting.log)
            router.signal(signal.SIGKILL)
