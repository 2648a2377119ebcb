"""A router that is secured by the profile file: whoever has no credentials is told so, whoever has some is answered."""

import os
import pathlib
import subprocess
import tempfile

from control import ControlTest, profile

GOVERNANCE = """<dds><domain_access_rules><domain_rule><domains><id_range><min>0</min><max>230</max></id_range></domains>
<allow_unauthenticated_participants>true</allow_unauthenticated_participants><enable_join_access_control>true</enable_join_access_control>
<discovery_protection_kind>NONE</discovery_protection_kind><liveliness_protection_kind>NONE</liveliness_protection_kind>
<rtps_protection_kind>NONE</rtps_protection_kind><topic_access_rules><topic_rule><topic_expression>*</topic_expression>
<enable_discovery_protection>true</enable_discovery_protection><enable_liveliness_protection>false</enable_liveliness_protection>
<enable_read_access_control>false</enable_read_access_control><enable_write_access_control>false</enable_write_access_control>
<metadata_protection_kind>ENCRYPT</metadata_protection_kind><data_protection_kind>ENCRYPT</data_protection_kind>
</topic_rule></topic_access_rules></domain_rule></domain_access_rules></dds>"""
PERMISSIONS = """<dds><permissions><grant name="all"><subject_name>CN=member</subject_name><validity><not_before>2020-01-01T00:00:00</not_before>
<not_after>2100-01-01T00:00:00</not_after></validity><allow_rule><domains><id_range><min>0</min><max>230</max></id_range></domains>
<publish><topics><topic>*</topic></topics></publish><subscribe><topics><topic>*</topic></topics></subscribe></allow_rule><default>DENY</default>
</grant></permissions></dds>"""
PROPERTIES = {
    "auth.plugin": "builtin.PKI-DH", "auth.builtin.PKI-DH.identity_ca": "ca.pem", "auth.builtin.PKI-DH.identity_certificate": "member.pem",
    "auth.builtin.PKI-DH.private_key": "member.key", "access.plugin": "builtin.Access-Permissions",
    "access.builtin.Access-Permissions.permissions_ca": "ca.pem", "access.builtin.Access-Permissions.governance": "governance.p7s",
    "access.builtin.Access-Permissions.permissions": "permissions.p7s", "crypto.plugin": "builtin.AES-GCM-GMAC"}


def make_credentials(folder):
    """An authority, one member, and the documents that it signs; returns the profile."""
    def openssl(*arguments):
        subprocess.run(["openssl", *arguments], cwd=folder, check=True, capture_output=True)

    key = ("-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes")
    openssl("req", "-x509", *key, "-keyout", "ca.key", "-out", "ca.pem", "-subj", "/CN=authority", "-days", "9")
    openssl("req", *key, "-keyout", "member.key", "-out", "member.csr", "-subj", "/CN=member")
    openssl("x509", "-req", "-in", "member.csr", "-CA", "ca.pem", "-CAkey", "ca.key", "-CAcreateserial", "-out", "member.pem", "-days", "9")
    for name, text in (("governance", GOVERNANCE), ("permissions", PERMISSIONS)):
        pathlib.Path(folder, name + ".xml").write_text(text, "ascii")
        openssl("smime", "-sign", "-in", name + ".xml", "-text", "-out", name + ".p7s", "-signer", "ca.pem", "-inkey", "ca.key")
    properties = "".join(
        f"<property><name>dds.sec.{name}</name><value>{value if value.startswith('builtin.') else f'file://{folder}/{value}'}</value></property>"
        for name, value in PROPERTIES.items())
    return profile(f"<propertiesPolicy><properties>{properties}</properties></propertiesPolicy>")


class Secured(ControlTest):
    domain = 74

    def test_who_has_no_credentials_is_told_so_and_who_has_some_is_answered(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        credentials = {"FASTRTPS_DEFAULT_PROFILES_FILE": self.file("profile.xml", make_credentials(folder))}
        self.router("vault", env=credentials)
        status, rows = self.run_json("--discovery", "1", "why", "vault")
        self.assertEqual((status, rows[0]["cause"]), (4, "not_authenticated"), rows)
        self.assertIn("it has an identity token", rows[0]["evidence"])
        status, rows = self.run_json("--discovery", "1", "enable", "vault")
        self.assertEqual((status, rows[0]["message"].split(":")[0]), (4, "not_authenticated"))
        status, rows = self.run_json("get", "vault", env=os.environ | credentials)
        self.assertEqual((status, rows[0]["status"]), (0, "ok"), rows)
