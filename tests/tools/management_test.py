#!/usr/bin/env python3
"""Drives the built program against a real S3 server, as a user would: looking at what is stored, and
managing it. What the program says is compared with what another client sees."""

import json
import os
import subprocess
import uuid

from tool_case import LIMIT, Case, ScriptedCase, environment, is_kept_by_sdk, run, server

MANY = 1100  # more than the 1000 that a page and a request hold


class ManagementCase(Case):
    def json(self, *arguments, **more):
        return json.loads(self.succeed(*arguments, "--json", **more))

    def aws(self, *arguments):
        """What another client answers; nothing where it answers nothing."""
        s3 = server()
        env = dict(os.environ, AWS_ACCESS_KEY_ID=s3["ACCESS_KEY"], LC_ALL="C.UTF-8",
                   AWS_SECRET_ACCESS_KEY=s3["SECRET_KEY"], AWS_DEFAULT_REGION=s3["REGION"],
                   AWS_CONFIG_FILE=os.devnull, AWS_SHARED_CREDENTIALS_FILE=os.devnull,
                   AWS_EC2_METADATA_DISABLED="true")
        done = subprocess.run(["aws", "--endpoint-url", "http://" + s3["ENDPOINT"], *arguments],
                              env=env, cwd=self.folder, timeout=LIMIT, capture_output=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        return json.loads(done.stdout) if done.stdout.startswith(b"{") else {}

    def listed_elsewhere(self, bucket):
        answer = self.aws("s3api", "list-objects-v2", "--bucket", bucket[5:])
        return [(entry["Key"], entry["Size"]) for entry in answer.get("Contents", [])]

    def put(self, bucket, **sizes):
        """Objects with these names and sizes."""
        for name, size in sizes.items():
            self.write(name, size)
            self.succeed("put", name, "%s/%s" % (bucket, name))


class Overview(ManagementCase):
    """Every command once or twice: what systems with slow starts of programs run too."""

    def test_a_bucket_lives_from_mb_to_rb(self):
        bucket = self.bucket()
        name = bucket[5:]
        self.put(bucket, first=1500, second=0)
        self.assertEqual(self.succeed("ls", bucket),
                         "          1500  first\n             0  second\n2 objects, 1500 bytes\n")
        self.assertEqual(self.json("ls", bucket), {
            "bucket": name, "prefix": "", "count": 2, "bytes": 1500,
            "objects": [{"key": "first", "size": 1500}, {"key": "second", "size": 0}]})
        self.succeed("find", bucket + "/fir")
        self.fail_with(4, "find", bucket + "/third")
        self.assertEqual(self.succeed("stat", bucket + "/first"),
                         bucket + "/first  1500 bytes (1.5 KiB)\n")
        self.succeed("tag", "set", bucket + "/first", "place=Rome")
        self.assertEqual(self.succeed("tag", "get", bucket + "/first"), "place=Rome\n")
        self.succeed("lifecycle", "set", bucket, "--days", "7")
        self.assertEqual(self.json("uploads", bucket)["uploads"], [])
        self.assertIn(bucket + "\n", self.succeed("buckets"))
        self.assertNotEqual(self.json("location", bucket)["location"], "")
        self.assertIn("still holds objects", self.fail_with(1, "rb", bucket))
        self.assertIn("2 objects", self.succeed("rm", bucket, "--verify", "--keys-from", "-",
                                                keys=b"first\r\nsecond\r\n"))
        self.assertIn(bucket, self.succeed("rb", bucket))
        self.assertNotIn(bucket + "\n", self.succeed("buckets"))


class Listings(ManagementCase):
    def test_every_key_is_listed_to_the_letter(self):
        bucket = self.bucket()
        self.write("in", 10)
        keys = ["a b", "a+b", "a%20b", "a@b", "a/b//c", "/a", "a?b=c&d", "a<b>&amp;", "a'b\"c",
                "a\\xFFb", "\u00e4\u20ac\u65e5\U0001f600", "a\tb"]
        for key in keys:
            put = self.succeed if is_kept_by_sdk(key) else self.refuse
            put("put", "in", "%s/%s" % (bucket, key))
        keys = list(filter(is_kept_by_sdk, keys))
        listed = self.json("ls", bucket)["objects"]
        self.assertEqual([(o["key"], o["size"]) for o in listed], self.listed_elsewhere(bucket))
        self.assertEqual(sorted(o["key"] for o in listed), sorted(keys))
        self.assertNotIn("keyEscaped", json.dumps(listed))
        lines = self.succeed("ls", bucket)
        self.assertIn("  a b\n", lines)
        # a terminal gets no control characters
        self.assertIn("  a?b\n", lines)

    def test_a_prefix_selects_and_sizes_can_be_read(self):
        bucket = self.bucket()
        self.put(bucket, large=1536, small=5, other=7)
        self.assertEqual(self.succeed("ls", bucket + "/l", "-h"),
                         "       1.5 KiB  large\n1 object, 1.5 KiB\n")
        self.assertEqual(self.succeed("ls", "--human-readable", bucket + "/s"),
                         "           5 B  small\n1 object, 5 B\n")
        self.assertEqual(self.succeed("ls", bucket + "/none"), "0 objects, 0 bytes\n")
        self.assertEqual(self.json("ls", bucket + "/none")["objects"], [])
        self.assertEqual(self.succeed("ls", "--quiet", bucket + "/s"), "             5  small\n")

    def test_more_objects_than_a_page_holds_are_listed_paged_and_removed(self):
        bucket = self.bucket()
        os.mkdir(self.path("many"))
        for number in range(MANY):
            with open(self.path("many/%04d" % number), "wb") as file:
                file.write(bytes(number % 3))
        self.aws("s3", "cp", "--recursive", "--only-show-errors", "many", bucket + "/k")
        elsewhere = self.listed_elsewhere(bucket)
        self.assertEqual(len(elsewhere), MANY)

        whole = self.json("ls", bucket)
        self.assertEqual([(o["key"], o["size"]) for o in whole["objects"]], elsewhere)
        self.assertEqual(whole["count"], MANY)
        self.assertEqual(whole["bytes"], sum(size for _, size in elsewhere))
        self.assertNotIn("nextToken", whole)

        first = self.json("ls", "--page", bucket)
        self.assertEqual(first["count"], 1000)
        second = self.json("ls", bucket, "--token", first["nextToken"])
        self.assertEqual(second["count"], MANY - 1000)
        self.assertIsNone(second["nextToken"])
        self.assertEqual([o["key"] for o in first["objects"] + second["objects"]],
                         [key for key, _ in elsewhere])
        text = self.succeed("ls", "--page", bucket)
        self.assertEqual(text.count("\n"), 1002)
        self.assertIn("--token '%s'" % first["nextToken"], text)

        keys = "".join(key + "\n" for key, _ in elsewhere[:-1]).encode()
        self.assertEqual(self.json("rm", bucket, "--keys-from", "-", "--verify", keys=keys),
                         {"bucket": bucket[5:], "requested": MANY - 1, "remaining": []})
        self.assertEqual(self.listed_elsewhere(bucket), elsewhere[-1:])

    def test_a_missing_bucket_says_so(self):
        bucket = "s3://tool-none-" + uuid.uuid4().hex
        for arguments in (("ls", bucket), ("find", bucket + "/k"), ("stat", bucket + "/k"),
                          ("uploads", bucket), ("location", bucket), ("rb", bucket),
                          ("lifecycle", "set", bucket, "--days", "1"),
                          ("tag", "get", bucket + "/k"), ("rm", bucket + "/a", bucket + "/b")):
            message = self.fail_with(1, *arguments)
            for part in ("status ", "'%s'" % bucket[5:], "no such bucket"):
                self.assertIn(part, message, arguments)


class Questions(ManagementCase):
    def test_find_tells_whether_any_key_begins_so(self):
        bucket = self.bucket()
        self.put(bucket, one=1)
        self.assertEqual(self.json("find", bucket + "/o"),
                         {"bucket": bucket[5:], "prefix": "o", "exists": True})
        self.assertEqual(self.succeed("find", "--quiet", bucket), "")
        code, out, err = self.run_tool("find", "--json", bucket + "/two")
        self.assertEqual((code, json.loads(out)["exists"], err.count("\n")), (4, False, 1))

    def test_stat_tells_the_size_of_exactly_the_key(self):
        bucket = self.bucket()
        self.put(bucket, k=0, k2=5)
        self.assertEqual(self.json("stat", bucket + "/k"),
                         {"bucket": bucket[5:], "key": "k", "exists": True, "size": 0})
        self.assertEqual(self.succeed("stat", bucket + "/k2"), bucket + "/k2  5 bytes\n")
        self.assertIn("no object", self.fail_with(4, "stat", bucket + "/k3"))
        code, out, _ = self.run_tool("stat", "--json", bucket + "/k3")
        self.assertEqual((code, json.loads(out)["exists"]), (4, False))

    def test_buckets_and_location_agree_with_another_client(self):
        bucket, other = self.bucket(), self.bucket()
        ours = [entry["bucket"] for entry in self.json("buckets")["buckets"]]
        theirs = [entry["Name"] for entry in self.aws("s3api", "list-buckets")["Buckets"]]
        # other tests make and remove buckets meanwhile
        mine = (bucket[5:], other[5:])
        self.assertCountEqual([name for name in ours if name in mine], mine)
        self.assertEqual([name for name in ours if name in mine],
                         [name for name in theirs if name in mine])
        where = self.aws("s3api", "get-bucket-location", "--bucket", bucket[5:])
        self.assertEqual(self.json("location", bucket),
                         {"bucket": bucket[5:], "location": where["LocationConstraint"]})
        self.assertEqual(self.succeed("location", bucket), where["LocationConstraint"] + "\n")

    def test_unfinished_uploads_agree_with_another_client(self):
        bucket = self.bucket()
        begun = []
        for key in ("part/a b", "part/\u00e4", "whole"):
            answer = self.aws("s3api", "create-multipart-upload", "--bucket", bucket[5:],
                              "--key", key)
            begun.append({"key": key, "uploadId": answer["UploadId"]})
        self.assertCountEqual(self.json("uploads", bucket)["uploads"], begun)
        listed = self.json("uploads", bucket + "/part/")
        self.assertCountEqual(listed["uploads"], begun[:2])
        self.assertEqual((listed["prefix"], listed["count"]), ("part/", 2))
        self.assertEqual(self.succeed("uploads", bucket + "/w"),
                         begun[2]["uploadId"] + "  whole\n1 unfinished upload\n")


class Changes(ManagementCase):
    def test_tags_are_replaced_and_shown(self):
        bucket = self.bucket()
        self.put(bucket, k=1)
        url = bucket + "/k"
        self.assertEqual(self.succeed("tag", "get", url), url + " has no tags\n")
        self.assertIn("2 tags", self.succeed("tag", "set", url, "place=Rome", "time:12:30=noon"))
        tags = [{"name": "place", "value": "Rome"}, {"name": "time", "value": "12:30=noon"}]
        self.assertEqual(self.json("tag", "get", url),
                         {"bucket": bucket[5:], "key": "k", "tags": tags})
        self.assertEqual(self.succeed("tag", "get", url), "place=Rome\ntime=12:30=noon\n")
        elsewhere = self.aws("s3api", "get-object-tagging", "--bucket", bucket[5:], "--key", "k")
        self.assertEqual(elsewhere["TagSet"], [{"Key": t["name"], "Value": t["value"]}
                                               for t in tags])
        self.assertEqual(self.json("tag", "set", url)["tags"], [])
        self.assertEqual(self.json("tag", "get", url)["tags"], [])
        self.assertIn("no such object", self.fail_with(1, "tag", "get", bucket + "/none"))

    def test_the_lifecycle_rule_arrives_whole(self):
        bucket = self.bucket()
        self.assertEqual(self.json("lifecycle", "set", bucket, "--days", "3", "--prefix", "a b/",
                                   "--id", "mine"),
                         {"bucket": bucket[5:], "days": 3, "prefix": "a b/", "id": "mine"})
        self.assertIn("1 day", self.succeed("lifecycle", "set", bucket, "--days", "1"))
        rules = self.aws("s3api", "get-bucket-lifecycle-configuration", "--bucket", bucket[5:])
        self.assertEqual(len(rules["Rules"]), 1)
        self.assertEqual(rules["Rules"][0]["ID"], "drop-unfinished-uploads")
        self.assertEqual(rules["Rules"][0]["AbortIncompleteMultipartUpload"],
                         {"DaysAfterInitiation": 1})

    def test_several_addresses_are_removed_and_others_stay(self):
        bucket = self.bucket()
        self.put(bucket, a=1, b=2, c=3, d=4)
        self.assertIn("accepted the removal of 2 objects",
                      self.succeed("rm", bucket + "/a", bucket + "/b"))
        self.assertEqual(self.listed_elsewhere(bucket), [("c", 3), ("d", 4)])
        self.assertEqual(self.json("rm", bucket + "/c"), {"bucket": bucket[5:], "requested": 1})
        with open(self.path("keys"), "wb") as file:
            file.write(b"d\nnever was\n")
        self.assertIn("2 objects", self.succeed("rm", "--verify", bucket, "--keys-from", "keys"))
        self.assertEqual(self.listed_elsewhere(bucket), [])
        self.assertIn("0 objects", self.succeed("rm", bucket, "--keys-from", "-"))

    def test_a_bucket_is_made_and_removed(self):
        name = "tool-" + uuid.uuid4().hex
        self.assertEqual(self.json("mb", "s3://" + name), {"bucket": name})
        self.assertEqual(self.json("rb", "s3://" + name), {"bucket": name})
        self.fail_with(1, "rb", "s3://" + name)

    def test_where_at_is_stored_as_plus_all_commands_mean_the_same_object(self):
        bucket = self.bucket()
        env = environment(MIRQOS_PROVIDER="5")
        self.write("in", 9)
        for key in ("a@b", "a@c"):
            self.succeed("put", "in", "%s/%s" % (bucket, key), env=env)
        self.assertEqual(self.listed_elsewhere(bucket), [("a+b", 9), ("a+c", 9)])
        for prefix in ("a@", "a+"):
            listed = self.json("ls", "%s/%s" % (bucket, prefix), env=env)
            self.assertEqual([o["key"] for o in listed["objects"]], ["a@b", "a@c"])
        self.assertEqual(self.json("stat", bucket + "/a@b", env=env)["size"], 9)
        self.succeed("get", bucket + "/a@b", "out", env=env)
        self.succeed("tag", "set", bucket + "/a@b", "t=v", env=env)
        self.assertEqual(self.succeed("tag", "get", bucket + "/a@b", env=env), "t=v\n")
        self.succeed("rm", bucket + "/a@b", bucket + "/a@c", "--verify", env=env)
        self.assertEqual(self.listed_elsewhere(bucket), [])

    def test_wrong_command_lines_are_usage_errors(self):
        with open(self.path("keys"), "wb") as file:
            file.write(b"good\n\xff\n")
        for arguments in (("ls",), ("ls", "b"), ("ls", "s3://b", "s3://c"),
                          ("ls", "s3://b", "--token", "t" * 260), ("find",), ("stat", "s3://b"),
                          ("tag", "get"), ("tag", "list", "s3://b/k"), ("tag", "set", "s3://b"),
                          ("tag", "get", "s3://b/k", "a=b"), ("tag", "set", "s3://b/k", "word"),
                          ("lifecycle", "set", "s3://b"), ("lifecycle", "get", "s3://b"),
                          ("lifecycle", "set", "s3://b", "--days", "0"), ("rb", "s3://b/k"),
                          ("rm",), ("rm", "s3://b/k", "s3://c/k"), ("rm", "s3://b/k", "s3://b"),
                          ("rm", "s3://b", "--keys-from", "keys"),
                          ("rm", "s3://b/k", "--keys-from", "-"), ("buckets", "s3://b"),
                          ("put", "in", "s3://b/k", "--json"), ("find", "-x", "s3://b/k")):
            self.fail_with(2, *arguments)
        self.fail_with(3, "rm", "s3://b", "--keys-from", "none")


class Scripted(ScriptedCase):
    """What a real server does not do on demand."""

    def test_rm_does_not_say_removed_where_the_service_kept_objects(self):
        def answer(request):
            request.send(200, b"<?xml version=\"1.0\"?><DeleteResult><Error><Key>a</Key>"
                              b"<Code>AccessDenied</Code></Error></DeleteResult>")
        env = self.serve(answer, head=200)
        message = self.fail_with(1, "rm", "--verify", "s3://bucket/a", "s3://bucket/b", env=env)
        self.assertIn("2 of 2 objects still exist", message)
        self.assertIn("s3://bucket/a", message)
        code, out, _ = self.run_tool("rm", "--verify", "s3://bucket/a", "s3://bucket/b", "--json",
                                     env=env)
        self.assertEqual((code, json.loads(out)["remaining"]), (1, ["a", "b"]))
        self.assertIn("accepted", self.succeed("rm", "s3://bucket/a", "s3://bucket/b", env=env))

    def test_a_refused_batch_says_how_many_were_accepted_before(self):
        batches = []

        def answer(request):
            batches.append(request.path)
            if len(batches) == 1:
                request.send(200, b"<?xml version=\"1.0\"?><DeleteResult/>")
            else:
                request.refuse(403, "AccessDenied")
        keys = "".join("%d\n" % n for n in range(1500)).encode()
        message = self.fail_with(1, "rm", "s3://bucket", "--keys-from", "-", keys=keys,
                                 env=self.serve(answer))
        self.assertIn("status 15,", message)
        self.assertIn("1000 of 1500 objects had been accepted before", message)
        self.assertEqual(len(batches), 2)

    def test_a_listing_that_fails_on_the_way_is_a_failure(self):
        def listing(request):
            if "continuation-token" in request.path:
                request.refuse(403, "AccessDenied")
            else:
                request.list([("a", 1)], token="t")
        env = self.serve(None, listing)
        for more in ((), ("--json",)):
            code, out, err = self.run_tool("ls", "s3://bucket", *more, env=env)
            self.assertEqual(code, 1)
            self.assertIn("status 15,", err)
            self.assertNotIn("1 object", out)

    def test_a_listing_that_never_goes_on_is_ended(self):
        env = self.serve(None, lambda request: request.list([("a", 1)], token="t"))
        code, _, err = self.run_tool("ls", "s3://bucket", env=env)
        self.assertEqual(code, 1)
        self.assertIn("does not go on", err)

    def test_a_page_that_is_not_the_last_is_never_taken_for_it(self):
        env = self.serve(None, lambda request: request.list([("a", 1)], token=""))
        for more in ((), ("--json",), ("--page",)):
            code, out, err = self.run_tool("ls", "s3://bucket", *more, env=env)
            self.assertEqual(code, 1, out)
            self.assertIn("does not go on", err)
            self.assertNotIn("1 object", out)

    def test_stat_knows_no_size_where_listing_is_refused(self):
        env = self.serve(None, head=200)
        self.assertIn("size unknown", self.succeed("stat", "s3://bucket/k", env=env))
        self.assertIsNone(json.loads(self.succeed("stat", "s3://bucket/k", "--json",
                                                  env=env))["size"])

    def test_uploads_are_walked_by_their_markers(self):
        def answer(request):
            second = "key-marker=a" in request.path
            request.send(200, ("<?xml version=\"1.0\"?><ListMultipartUploadsResult>%s<Upload><Key>"
                               "%s</Key><UploadId>id</UploadId></Upload>"
                               "</ListMultipartUploadsResult>" % (
                                   "<IsTruncated>false</IsTruncated>" if second else
                                   "<IsTruncated>true</IsTruncated>"
                                   "<NextKeyMarker>a</NextKeyMarker>",
                                   "b" if second else "a")).encode())
        env = self.serve(answer)
        self.assertEqual(self.succeed("uploads", "s3://bucket", env=env),
                         "id  a\nid  b\n2 unfinished uploads\n")


if __name__ == "__main__":
    run(__doc__)
