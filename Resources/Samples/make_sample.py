#!/usr/bin/env python3
# Builds the bundled "Teacher Retention" sample project
# (Resources/Samples/TeacherRetention.mvibrl/): seven typed transcripts plus a
# coded workspace and its audit trail, all invented.
#
#   python3 Resources/Samples/make_sample.py
#
# Output is byte-for-byte identical on every run (fixed dates, ids derived
# with uuid5 from fixed names), so the generated package can live in git and
# any diff in it means the content here changed. The whole package is checked
# for dangling references before anything touches the disk, and it is written
# to a temporary folder that replaces the old package only once complete.

import json
import os
import re
import shutil
import sys
import tempfile
import uuid
from datetime import datetime, timedelta

HERE = os.path.dirname(os.path.abspath(__file__))
PACKAGE_NAME = "TeacherRetention.mvibrl"

NAMESPACE = uuid.uuid5(uuid.NAMESPACE_URL, "urn:mibrel:sample:teacher-retention")


class SampleError(Exception):
    pass


def uid(kind, key):
    return str(uuid.uuid5(NAMESPACE, kind + ":" + key)).upper()


def at(text):
    """'2026-02-16 09:00' -> datetime; keeps the data tables readable."""
    return datetime.strptime(text, "%Y-%m-%d %H:%M")


def iso(moment):
    return moment.strftime("%Y-%m-%dT%H:%M:%SZ")


# ---------------------------------------------------------------------------
# Sources
# ---------------------------------------------------------------------------
# Each segment is one speaker turn. Pseudonyms only; the district, schools and
# towns are invented.

SOURCES = [
    {
        "key": "T01",
        "label": "Interview — Participant T01",
        "date": "2026-01-20 16:00",
        "createdAt": "2026-01-22 10:15",
        "tags": ["interview", "mathematics", "year 2", "Quillon Ridge"],
        "mediaMemo": {
            "tone": "Warm and self-deprecating; quicker and flatter whenever money came up.",
            "pausesAndEmphasis": "Long pause before “Fifth period geometry.” Stressed “Literally” in “I do the math.”",
            "setting": "Participant's classroom at Quillon Ridge after dismissal, door closed, some hallway noise.",
            "gestureAndMovement": "Pointed at the wall of student work while describing the slope unit.",
            "interaction": "Relaxed. Asked twice whether the answers were “useful”, which I read as a wish to be a good participant rather than a sign of holding back.",
            "nonverbalContext": "",
            "analyticNotes": "First interview. My opening ran long; I shortened the introduction for the later ones.",
        },
        "turns": [
            ("Interviewer", "Thanks for making time, I know it's the end of a long day. To start, could you tell me a bit about where you teach and what your year looks like?"),
            ("T01", "Sure. So I'm at Quillon Ridge, this is my second year. I teach math — two sections of Algebra 1, two of Geometry, and one Math Support block, which is kind of its own thing. So three different preps. Last year I had two, so that was a jump nobody really warned me about."),
            ("Interviewer", "What does a typical week look like for you in terms of hours?"),
            ("T01", "Honestly? I get in at like 6:45 and I'm usually there till five. And then Sunday is — Sunday is grading day. I tried to protect Saturdays this year, that's my one rule. But with three preps I'm basically building the geometry course from scratch, because what I was handed was a binder from 2014."),
            ("Interviewer", "When you started at Quillon Ridge, what support was set up for you?"),
            ("T01", "On paper I had a mentor. The district assigns one for your first two years. But mine was at Esker Hill, different building, different schedule, and we met, I think, four times? She was nice. It just — she couldn't see my classroom, you know, she didn't know my kids. So it was a lot of “how are you feeling” and filling out the log."),
            ("Interviewer", "So who did you actually go to?"),
            ("T01", "The guy next door. He teaches Algebra 2, he's been there like twelve years. He'd just stick his head in at lunch and say “what are you doing tomorrow” and then hand me something. That's the mentoring that actually happened. Nobody assigned him. I don't think he even knows he did it."),
            ("Interviewer", "How would you describe your relationship with the administration?"),
            ("T01", "Fine? Like, they're not the problem. The assistant principal came in twice for walkthroughs and the feedback was fair. But I don't think they really know what's going on in my room. When I asked for help with one student who was, um, pretty disruptive, the answer was to call home and document. Which I'd done. So it's not hostile, it's just far away."),
            ("Interviewer", "Can you tell me about a moment this year when you felt like the work was going well?"),
            ("T01", "Yeah, actually. In October my Math Support kids — these are kids who've basically been told for years they're bad at math — we did a unit on slope with skate ramp data, and one of them, a kid who'd literally never turned anything in, came up after class and asked if he could redo the quiz because he “knew it now.” And he did. He got an 84. I think about that a lot. That's the thing that tells me I might actually be good at this."),
            ("Interviewer", "And what about moments when it hasn't?"),
            ("T01", "Geometry. Fifth period geometry. I don't know. I've tried three seating charts. Some days I go home thinking I didn't teach anyone anything, I just managed the room for fifty-five minutes. That's the part that gets into your head — not that it's hard, but that you can't tell if you're getting better."),
            ("Interviewer", "You mentioned money briefly before we started recording. Is that something you think about in relation to staying?"),
            ("T01", "Oh, constantly. I have two roommates. I'm twenty-six. My rent went up again in August — everything in Pellbrook has gone up since the distribution centre opened. My friends from college who went into actuarial stuff are making double. I'm not saying I'd do that job, but I do the math. Literally, I'm a math teacher, I do the math."),
            ("Interviewer", "So where are you landing, thinking about next year?"),
            ("T01", "I'm staying next year. I signed the intent form already. After that — I genuinely don't know. If I still have three preps and I still can't afford a one-bedroom, I don't know how long I can say this is sustainable. But if Math Support keeps going like it is… I don't know. Ask me in May."),
        ],
    },
    {
        "key": "T02",
        "label": "Interview — Participant T02",
        "date": "2026-01-22 19:30",
        "createdAt": "2026-01-24 09:40",
        "tags": ["interview", "English", "year 3", "Dunmarrow", "leaving"],
        "mediaMemo": {
            "tone": "Measured, at times flat; became animated about the pacing calendar.",
            "pausesAndEmphasis": "Several seconds of silence before “That's the part I'm not okay with.” Repeated “Three.” for emphasis.",
            "setting": "Video call from the participant's home in the evening, camera on.",
            "gestureAndMovement": "",
            "interaction": "Thanked me at the end for asking why they were leaving. I need to be careful that the interview does not become the exit interview the district never held, with me as a sympathetic audience.",
            "nonverbalContext": "Partner briefly visible at the start; the participant moved to another room before we began.",
            "analyticNotes": "Check whether “Sunday dread” turns up unprompted in other accounts. Decision to leave is already made, so this is a retrospective account.",
        },
        "turns": [
            ("Interviewer", "Thanks for joining. Just to confirm, you're okay with me recording this call?"),
            ("T02", "Yes, that's fine."),
            ("Interviewer", "Great. Can you start by telling me about your teaching so far?"),
            ("T02", "This is my third year at Dunmarrow. I teach ninth- and eleventh-grade English. I came in really idealistic — I had this whole vision of a reading workshop classroom, kids choosing their own books. And the first year I kind of got to do that. It was hard, but it was mine."),
            ("Interviewer", "You said “the first year.” What changed?"),
            ("T02", "The district adopted a new literacy curriculum last year. It's — it's very scripted. There are pacing calendars, and there's a common assessment every three weeks, and the department head has to report whether we're “on pace.” So if my kids are really into a discussion about a book, I have to cut it off because we're supposed to be on lesson 4.3 by Thursday. I didn't become a teacher to read someone else's slides."),
            ("Interviewer", "How has that affected how you feel about the work?"),
            ("T02", "I think it made me feel like a technician. Like I could be replaced by anybody who can click “next.” And honestly that's when the Sunday dread started. Around four in the afternoon on Sunday, this heaviness. My partner noticed it before I did."),
            ("Interviewer", "Can you say more about that heaviness?"),
            ("T02", "It's not that I'm sad exactly. It's like — I've already used everything up by Friday. I'm giving all week, being “on” for a hundred and forty kids, and there's nothing that fills it back up. I used to read for fun. I haven't finished a book for myself since, I think, last spring. For an English teacher that's kind of bleak."),
            ("Interviewer", "What about the school leadership? How have they figured in this?"),
            ("T02", "We've had three principals in three years. Three. Each one comes in with a new initiative, a new acronym, and then leaves. So I've stopped investing in any of it. The current one is fine as a person, but when I raised the pacing thing at a staff meeting, the response was basically “this is a district decision.” Which, okay, but then what are you for?"),
            ("Interviewer", "Were there people you could lean on?"),
            ("T02", "My department, a bit. There's a group of us who eat lunch together and kind of vent. But honestly half of that group has left or is leaving. It's hard to build trust with people when you're all sort of half out the door."),
            ("Interviewer", "You mentioned earlier you're planning to leave. Can you walk me through how you got to that decision?"),
            ("T02", "Yeah. So, I applied for an instructional design job at a company that makes online courses. I got it, I start in July. It's more money, not a lot more, but more, and I can work from home. And I kept going back and forth, making a pros and cons list. But in the end it wasn't the list. It was that I couldn't picture myself at thirty-five still doing this. I couldn't see a version of this job that I'd want."),
            ("Interviewer", "Is there anything that would have kept you?"),
            ("T02", "Probably if I'd had my room back. The autonomy. And maybe if someone had ever asked me what I thought — I mean, you're the first person who's asked me why I'm leaving. There's no exit interview. I just filled out a form."),
            ("Interviewer", "How do you feel about leaving your students?"),
            ("T02", "That's the part I'm not okay with. I have this one eleventh-grade class, they're — they're wonderful. One of them wrote me a note saying I was the reason she started reading again. I keep it in my desk. So I'm leaving the job, not them, if that makes sense. But it doesn't feel like that to them, I know."),
        ],
    },
    {
        "key": "T03",
        "label": "Interview — Participant T03",
        "date": "2026-01-28 14:10",
        "createdAt": "2026-01-30 11:05",
        "tags": ["interview", "chemistry", "year 1", "Esker Hill", "career changer"],
        "mediaMemo": {
            "tone": "Analytical and precise; often framed teaching in laboratory terms (protocols, calibration).",
            "pausesAndEmphasis": "Slowed down and chose words carefully when talking about privilege and the pay cut.",
            "setting": "Small conference room at Esker Hill during the participant's planning period; 50 minutes.",
            "gestureAndMovement": "Counted on fingers while listing the decisions made in a lesson.",
            "interaction": "Comfortable, reflective. Asked what other participants had said about mentoring; I declined to share and explained why.",
            "nonverbalContext": "Bell rang twice; we paused once for a student collecting a forgotten bag.",
            "analyticNotes": "The most positive account so far. Resist treating it as the model case: the financial cushion and the deliberately matched mentor are unusual.",
        },
        "turns": [
            ("Interviewer", "Let's start with how you came to teaching."),
            ("T03", "I worked in a quality control lab for nine years. Pharmaceutical testing. Good money, very stable, very boring. I started volunteering with a robotics club on weekends and realized I liked the kids more than the instruments. So I did the alternative certification route and here I am, first year, chemistry at Esker Hill."),
            ("Interviewer", "How has the first year compared with what you expected?"),
            ("T03", "Harder. Much harder, but in a different way than I thought. I expected the content to be easy, and it is. What I didn't expect is how many decisions you make in an hour. In the lab, you follow the protocol. Here it's like two hundred tiny judgment calls a period. Do I stop the lesson for that comment or let it go. That kind of thing."),
            ("Interviewer", "What has helped you with that?"),
            ("T03", "My mentor, hands down. She teaches biology across the hall, she's been there twenty years. We meet every Tuesday, and it's not a checklist meeting. She'll come watch the first ten minutes of my third period and then we'll talk about just that ten minutes. Like, really granular. “You gave the instructions while they were still getting out their notebooks.” Things I'd never have seen."),
            ("Interviewer", "How did that pairing come about?"),
            ("T03", "The principal set it up, actually. She told me in August she'd picked someone in my hallway on purpose, and she got us a shared planning period. I didn't realize until I talked to other first-years how lucky that was."),
            ("Interviewer", "You mentioned the principal. What's your sense of the administration here?"),
            ("T03", "Supportive. Not perfect, but supportive. When I had a lab safety incident — a kid was fooling around with a burner — the dean came down the same period and dealt with it, and then followed up with me afterwards to ask how I was doing. That follow-up meant more than the discipline part. I felt like someone had my back."),
            ("Interviewer", "Are there parts of the job that feel heavy right now?"),
            ("T03", "The grading is relentless. Lab reports, every week, a hundred and ten students. I'm trying to give real feedback because in industry that's how you learn to write a report. But I'm doing it at my kitchen table until eleven some nights. My wife has started calling the lab reports “the other family member.”"),
            ("Interviewer", "Do you feel like you're effective as a teacher at this point?"),
            ("T03", "Some days. I'd say I'm competent at chemistry and still an apprentice at teaching. I had a kid tell me “you explain it like it actually matters,” and I held onto that for a week. But I also have a class where I still feel like I'm losing them by minute twenty. My mentor says that's normal in year one. I'm choosing to believe her."),
            ("Interviewer", "How do you think about money, having come from industry?"),
            ("T03", "I took about a forty percent pay cut. I knew that going in, and we planned for it. We'd paid down the house. If I were twenty-three and renting in Pellbrook, I honestly don't think I could do this. I'm aware that I'm in a privileged position to be able to choose this."),
            ("Interviewer", "Do you see yourself staying?"),
            ("T03", "Yes. I'm not naive — I know year one is the honeymoon, with the mentor and everything. But I feel like I'm learning a craft, and I have someone teaching it to me. As long as that's true I'll stay. If it stopped being true, I don't know."),
        ],
    },
    {
        "key": "T04",
        "label": "Interview — Participant T04",
        "date": "2026-02-03 17:00",
        "createdAt": "2026-02-05 09:30",
        "tags": ["interview", "social studies", "year 4", "Dunmarrow", "leaving district"],
        "mediaMemo": {
            "tone": "Direct, occasionally wry; firm and slower whenever drawing the line between leaving the district and leaving teaching.",
            "pausesAndEmphasis": "Hit “Eleven.” hard. Short laugh after “three dollars an hour”.",
            "setting": "Coffee shop chosen by the participant, away from school. Background noise; recorder placed close.",
            "gestureAndMovement": "Drew a line across the table with a finger for “the gap”.",
            "interaction": "Asked at the end how the findings would be written up; I promised a member check on any theme using this interview.",
            "nonverbalContext": "Participant checked the room on arrival and chose a table facing the door.",
            "analyticNotes": "Second Dunmarrow participant: accounts of leadership turnover here and in T02 come from the same school and should not be counted as independent confirmation.",
        },
        "turns": [
            ("Interviewer", "Thanks for meeting me here. Just checking you're comfortable talking in a public place?"),
            ("T04", "Yeah, it's fine, nobody from school comes here. That's kind of why I picked it."),
            ("Interviewer", "Can you tell me where you are in your career right now?"),
            ("T04", "Fourth year. Social studies at Dunmarrow — world history mostly, and I coach JV soccer. And I've accepted a job in Tallis County for next year. So I'm leaving Pellbrook. Not leaving teaching, I want to be clear on that. I'm leaving the district."),
            ("Interviewer", "That distinction seems important to you."),
            ("T04", "It is. When people hear “leaving,” they assume you burned out and you're going to sell real estate. I'm not burned out on teaching. I'm burned out on doing the math every month and coming up short."),
            ("Interviewer", "Can you say more about the math?"),
            ("T04", "Okay, so, Tallis County's salary schedule at my step is about eleven thousand more. Eleven. And their health plan is cheaper. I coach soccer for a stipend that works out to maybe three dollars an hour if you count the bus rides. I tutor on Saturdays. I'm thirty, I'm working three jobs, and I'm still in an apartment with a roommate. At some point you stop calling it dedication."),
            ("Interviewer", "How long have you been thinking about moving?"),
            ("T04", "Seriously? Since last spring. The thing that tipped it was, um, our car died and I had to put the repair on a credit card, and I sat there doing the numbers on a napkin, and I thought: this is never going to close. The gap is never going to close here."),
            ("Interviewer", "What will you miss about Dunmarrow?"),
            ("T04", "The department. Honestly that's the hardest part. There are five of us in social studies and we are tight. We share everything — units, assessments, we cover each other's duty when someone's kid is sick. When I told them I was leaving, one of them just said, “Good. Go. You should have done it last year.” That's the kind of trust I mean. They wanted what was good for me more than they wanted me to stay."),
            ("Interviewer", "And the administration?"),
            ("T04", "It's been a revolving door. Three principals since I started. I think the admin team means well but they're putting out fires all day. The only time I had a real conversation with an administrator about my career was my first-year evaluation. Nobody asked me about my plans. When I handed in my resignation letter, the reaction was, “Okay, we'll post the position.”"),
            ("Interviewer", "How has the work itself felt this year?"),
            ("T04", "Weirdly, this has been my best year in the classroom. I know what I'm doing now. I've got units I'm proud of — we did a simulation of the Congress of Vienna that the kids still talk about. I feel good at this. Which makes leaving harder, but it's also why I'm not leaving teaching. I finally feel like a real teacher."),
            ("Interviewer", "Is there anything the district could have done to keep you?"),
            ("T04", "Pay. I'm sorry, it's not complicated. Maybe a housing stipend, some districts do that. And I'd have stayed for less money if I'd had a path — like, a teacher leader role, something that said you have a future here. But there's nothing between “teacher” and “assistant principal,” and I don't want to be an administrator."),
            ("Interviewer", "Anything else you want to add?"),
            ("T04", "Just that — when you write this up, don't make it sound like we're leaving because we don't care. I'm leaving because I care about still being able to do this in ten years."),
        ],
    },
    {
        "key": "T05",
        "label": "Interview — Participant T05",
        "date": "2026-02-06 13:20",
        "createdAt": "2026-02-08 15:45",
        "tags": ["interview", "special education", "year 2", "Quillon Ridge", "local roots"],
        "mediaMemo": {
            "tone": "Warm and fast-paced; much quieter when describing December.",
            "pausesAndEmphasis": "Stopped for a moment after “His mom hugged me in the office.” Emphasised “home”.",
            "setting": "The participant's resource room during a prep period; one interruption from a student at the door.",
            "gestureAndMovement": "Tapped a stack of IEP folders on the desk while describing the caseload.",
            "interaction": "Open and trusting; asked about my own years in the classroom before we started, and I answered briefly.",
            "nonverbalContext": "Briefly tearful describing the week in December. I offered to pause; the participant preferred to continue.",
            "analyticNotes": "This interview prompted the Staying anchors code: the account of staying rests on place and family, not on the job adding up.",
        },
        "turns": [
            ("Interviewer", "Could you start by describing your role?"),
            ("T05", "I'm a special education teacher at Quillon Ridge, second year. I run a resource room and co-teach two inclusion sections of English. I have a caseload of twenty-two students, so I'm case manager for all their IEPs."),
            ("Interviewer", "What does the caseload mean for your week?"),
            ("T05", "Paperwork. So much paperwork. Every IEP meeting is hours of prep — progress data, drafting goals, scheduling around parents' work. I had six annual reviews in November alone. I do the IEP writing on my prep period, which means I'm not planning for co-teaching, which means I walk into co-taught English kind of winging it. It all dominoes."),
            ("Interviewer", "How does that feel, day to day?"),
            ("T05", "Tired. Like a deep tired. There was a week in December where I cried in my car in the parking lot before school two days in a row. Not about anything in particular. I just felt like I was holding twenty-two kids' whole futures in a folder and I was going to drop one."),
            ("Interviewer", "Who do you turn to when it's like that?"),
            ("T05", "The other sped teacher, she's been here eight years. We have a rule: whoever's having the worse day gets the good coffee. It sounds silly, but that's been my lifeline. With the general ed teachers, it depends. My English co-teacher is great, we really plan together. The other one treats me like an aide."),
            ("Interviewer", "And the administration?"),
            ("T05", "Mixed. The assistant principal who oversees special ed is responsive, she'll come to an IEP meeting if a parent's upset. But when I asked for a paraprofessional for one of my students who really needs one, I was told there's no budget, and that was the end of it. I understand there's no money. But I still have to walk back into that classroom."),
            ("Interviewer", "You grew up in Pellbrook, I think you mentioned?"),
            ("T05", "Yeah, I went to Quillon Ridge. Some of my teachers are my colleagues now, which is surreal. My mom lives ten minutes away. My nephew's in sixth grade and he'll be at Quillon in two years. I know these families. I see my students' parents at the grocery store."),
            ("Interviewer", "How does that connection figure in whether you stay?"),
            ("T05", "It's everything. People ask me why I'd stay with the workload and the pay, and — honestly, I've never done the math, because if I did the math I'd probably leave. I'm not here because it adds up. I'm here because it's home, and these kids are kids I'd see around town anyway. Somebody from here should be teaching them."),
            ("Interviewer", "Do you feel effective?"),
            ("T05", "With the kids, yes. I had a student this fall who'd been in a self-contained room since fourth grade, and we got him into a general ed history class with support, and he passed the first quarter. His mom hugged me in the office. That's — yeah. With the system, no. I feel like I'm good at the kids and bad at the paperwork, and the paperwork is what gets audited."),
            ("Interviewer", "Where do you see yourself in a few years?"),
            ("T05", "Here. I mean, I'll probably be exhausted. But here. Maybe doing my master's so I can move up the salary schedule. I'd just like it to be a bit less like holding my breath."),
        ],
    },
    {
        # Recruited after the focus group, hence the later date: first coding
        # showed no account from anyone who had actually left. Listed with the
        # interviews so the focus group stays last.
        "key": "T10",
        "label": "Interview — Participant T10",
        "date": "2026-02-24 16:15",
        "createdAt": "2026-02-26 15:30",
        "tags": ["interview", "English language development", "year 4", "Esker Hill", "returner"],
        "mediaMemo": {
            "tone": "Even and reflective, with dry humour; slower and more careful about the training job, as if checking the account against how it had felt at the time.",
            "pausesAndEmphasis": "Long pause before “It was a schedule.” Stressed “chose” in “This time I chose the school.”",
            "setting": "Participant's classroom at Esker Hill after the late buses, posters in four languages on the back wall; 65 minutes.",
            "gestureAndMovement": "Turned an old distribution-centre lanyard over in their hands for part of the interview; said it lives in the desk drawer.",
            "interaction": "Recruited through the teachers' association newsletter. Said they agreed because “people only ask the ones who leave, never the ones who come back.”",
            "nonverbalContext": "A student came back for a phone charger near the end and chatted with the participant in Spanish for a minute; recorder paused.",
            "analyticNotes": "The only participant who has lived on both sides of the comparison with other work; this interview prompted that code. I left teaching and did not go back, and caught myself wanting to hear the return as a retreat. Memo written the same evening.",
        },
        "turns": [
            ("Interviewer", "Thanks for staying after the buses. You said on the phone that this is your second time teaching in Pellbrook. Could you tell me how that came about?"),
            ("T10", "Sure. I taught English at Quillon Ridge for three years, straight out of my credential program. Then I left in June 2023 and worked at the distribution centre for two years, in training. And in August I came back — different school, and really a different subject. I teach English language development here at Esker Hill now. So it's my fourth year of teaching and my first year in this building, which is a strange thing to be."),
            ("Interviewer", "Can you take me back to the decision to leave?"),
            ("T10", "It wasn't one thing. Third year, I had a hundred and fifty-some students, I was coaching speech and debate, and I was paying off loans on a salary that — I did the spreadsheet. Everybody does the spreadsheet. The centre was hiring training coordinators, and the posting actually said “former teachers encouraged to apply,” which tells you something. It was nine thousand more to start, plus a bonus, and the day ended at five. Actually ended. I remember thinking, I'll get my evenings back and I'll finally be a person."),
            ("Interviewer", "And did you get them back, the evenings?"),
            ("T10", "I did. That part was true. I went to the gym, I cooked, I read novels again. For about six months I felt like I'd gotten away with something. The job was onboarding — safety modules, the scanner system, how to lock out a conveyor before you reach into it. And I was good at it. My reviews were great. I could stand in front of forty adults at six in the morning and keep them awake, which after ninth graders is not hard."),
            ("Interviewer", "You said “for about six months.” What happened after that?"),
            ("T10", "It got quiet in a way I didn't expect. Every module was written by corporate and signed off by compliance, and I wasn't allowed to change a slide. If someone didn't get it, you played the video again. Nobody remembered any of it a week later, and nobody was supposed to — they needed the certificate in the system, that's all. I used to have Sunday dread. Out there I had Sunday nothing. I wasn't dreading Monday, but I wasn't anything about Monday either."),
            ("Interviewer", "Was there a moment when you started thinking about coming back?"),
            ("T10", "There was a specific day. I was running a forklift certification group, and one of the new hires stopped me at the break and said, “Wait, you're —” and my name — “you were my sister's English teacher. She still talks about that poetry slam.” And I went out to my car at lunch and just sat there. Because I'd been good at the training for two years and nobody was ever going to say that about it. Not because the people weren't great. It just wasn't that kind of work."),
            ("Interviewer", "What did deciding to come back look like?"),
            ("T10", "Slow. I did the spreadsheet again, in the other direction. My partner had started a job with the county that has good health insurance, so for the first time the math didn't have to work on my salary alone. I'm not going to pretend that isn't part of it. I came back two steps lower than I'd be if I'd never left, and it's still about eight thousand less than the centre. But I could see a version of it I could do."),
            ("Interviewer", "What made that version different from the one you left?"),
            ("T10", "Two things, mostly. This time I chose the school. In my interview here the principal asked me why I'd left the first time, and then she actually wrote down what I said. Nobody asked me that when I left — I handed in a letter and that was it. And I came back with rules. I don't coach. I don't join committees this year. I grade in the building, and when I leave the building I leave. I say no to everything that isn't students, and I say it early, before anyone's counting on me."),
            ("Interviewer", "How have the rules held up, six months in?"),
            ("T10", "Mostly. Coverage is the exception — you can't say no to coverage, nobody can, there are no subs. I've covered nine periods since Christmas. But the rest, yes. I'm out by four-thirty three days a week. I'm more tired than I was at the centre and less tired than I was in year three, if that makes sense. It's the kind of tired where you sleep."),
            ("Interviewer", "You've moved from English to English language development. How has that been?"),
            ("T10", "Humbling. Most of my students arrived in the last two years, a lot of them because a parent got a job at the centre — so some of them are families I trained. I had a girl arrive in October with almost no English, and by January she was correcting my Spanish in front of the class. Some days I have no idea what I'm doing. But when it goes wrong here it matters, and when it goes right it matters. At the centre I was good at it and it didn't matter. I'll take this."),
            ("Interviewer", "Who do you have around you here?"),
            ("T10", "Nobody assigned. The mentoring is for your first two years, and on paper I'm a fourth-year. But I'm new to this building and new to teaching language, so I'm sort of in between. There's a district coordinator who visits once a month, which is fine. Really it's the two Spanish teachers down the hall — they let me sit in on their classes during my prep for the first few weeks. And a couple of people from Quillon Ridge texted me in August: “traitor,” as a joke, and then “welcome home.”"),
            ("Interviewer", "Do you think about leaving again?"),
            ("T10", "Sometimes. I'm not going to tell you I've found my forever. If my partner's job went away, or if they started taking my prep for coverage every day, I'd do the spreadsheet again. But I'd leave knowing what I was leaving for. Last time I thought the other side of the gap was a life. It was a schedule."),
            ("Interviewer", "What would you say to someone who's where you were in your third year?"),
            ("T10", "Do the spreadsheet, honestly. It's not wrong. Just know it doesn't have a row for what you'll miss. And maybe work somewhere that asks you why you're leaving, because if somebody had asked me, I might have told them something they could fix."),
        ],
    },
    {
        "key": "FG1",
        "label": "Focus group — early-career teachers (T06–T09)",
        "date": "2026-02-12 16:30",
        "createdAt": "2026-02-14 10:20",
        "tags": ["focus group", "mixed subjects", "years 1–3"],
        "mediaMemo": {
            "tone": "Lively; a lot of agreement and overlapping talk, with laughter around the group chat.",
            "pausesAndEmphasis": "Quiet after T08's last turn; nobody picked it up before I closed.",
            "setting": "Meeting room in the Pellbrook public library after school; 75 minutes; snacks provided.",
            "gestureAndMovement": "",
            "interaction": "T07 and T08 spoke most. T09 waited to be invited and I invited them directly twice. Overlapping speech has been simplified in the transcript.",
            "nonverbalContext": "Nods around the table at “Freedom and being ignored kind of look the same sometimes.”",
            "analyticNotes": "Group norms may have tilted talk towards complaint: T08 prefaced a positive mentoring account with “I want to say that, because it's not all bad.”",
        },
        "turns": [
            ("Facilitator", "Thank you all for coming. As we discussed, I'll use your participant numbers rather than names. I'd like to start with an open question: what would need to be true for you to still be teaching in this district in five years?"),
            ("T07", "Can I go first? For me it's planning time. Real planning time. Not a prep period that gets taken for coverage three times a week because there are no subs."),
            ("T08", "Yes. The coverage thing. I covered eleven periods in January. Eleven. And we don't get paid for it unless it goes over some number, I still don't understand the formula."),
            ("T06", "I think I'm in a slightly different place because I'm in PE and health, and coverage for me often means a double class in the gym. Sixty kids. It's not planning, it's crowd control."),
            ("Facilitator", "So time comes up for all of you. What else?"),
            ("T09", "For me it's whether anybody notices. I'm the only music teacher at my school. There's nobody in my subject to talk to. My mentor was a math teacher. Lovely person, but when I asked about choir scheduling she was just — she had no idea. I had to find a music teacher in another district through a Facebook group."),
            ("T07", "Same with world languages. My mentor was great as a human, but we'd meet and talk about classroom management generally and I'd leave thinking, okay, but how do I teach the subjunctive to kids who don't know what a verb is."),
            ("T08", "My mentoring was good, actually. I want to say that, because it's not all bad. My mentor was in biology with me, and she gave me every single lab she'd ever made. I didn't have to build anything my first year. I think that's why I'm still here, honestly."),
            ("Facilitator", "That's a useful contrast. What made it work for you, do you think?"),
            ("T08", "Same subject, same building, and she actually wanted to do it. I think some people get assigned mentees because nobody else volunteered. She'd asked to be a mentor."),
            ("Facilitator", "Let's talk about autonomy — how much say you have over what and how you teach."),
            ("T06", "In health I have tons of freedom, almost too much. There's basically no curriculum, I made everything myself. Which I like, but it's also, like, nobody would notice if I showed videos all year. Freedom and being ignored kind of look the same sometimes."),
            ("T07", "I'd take being ignored over being micromanaged. We got a new common assessment schedule this year and my department head checks our gradebooks every Friday. It feels like they don't trust us."),
            ("T09", "I have total autonomy and total isolation. I get to pick all the repertoire, which I love. But I also run the winter concert alone, the spring concert alone, the fundraiser alone."),
            ("Facilitator", "I'd like to ask about pay and cost of living. How does that play into your thinking?"),
            ("T06", "I live with my parents. I'm twenty-four. That's the only reason the math works. If I had to rent in Pellbrook I'd be gone."),
            ("T08", "I commute forty minutes from Lowmarsh because rent's lower there. So I'm paying in gas and time instead of rent. Which eats into, you know — planning time again."),
            ("T09", "I'll say the unpopular thing. I don't think pay is my main issue. I'd stay for this salary if I weren't doing three people's jobs. It's the workload-to-pay ratio, not the pay."),
            ("Facilitator", "What keeps you here right now, on the hard days?"),
            ("T07", "The kids. That's a cliché, I know. But there's this moment when a kid says something in Spanish without translating in their head first, and you see it on their face. I'd miss that."),
            ("T06", "The group chat. There are six of us first- and second-years across the district, and we have a group chat. It's mostly memes, but when someone has a terrible day, everyone shows up. That chat has done more for me than the official mentoring program."),
            ("T08", "I'll be honest, I'm interviewing for a job in a lab. I haven't decided. I think if I get it, I'll probably take it, and then I'll miss this every day. Both of those things are true."),
        ],
    },
]


# ---------------------------------------------------------------------------
# Codebook
# ---------------------------------------------------------------------------

CODES = [
    {
        "key": "workload",
        "createdAt": "2026-02-16 09:00",
        "name": "Workload intensity",
        "status": "accepted",
        "includeInContextualLens": False,
        "definition": "Accounts of the amount, pace and spread of work demands — teaching load, number of preparations, grading, added duties and unpaid coverage — and how these press on time inside and outside the contract day.",
        "fullDescription": "Captures the quantity of work as participants describe it. The analytic interest is in what fills the day and where it spills over (evenings, weekends, prep periods lost to coverage), and in how participants count it: hours, periods, preps, student totals. The code is about load rather than feeling. Participants often move quickly from one to the other, so it frequently co-occurs with Emotional exhaustion.",
        "includeWhen": "The participant describes hours worked, number of preparations, student or caseload totals, grading volume, coaching or extracurricular duties, paperwork volume, or covering colleagues' classes; or describes work displacing evenings, weekends or planning time.",
        "excludeWhen": "Depletion or dread described without reference to the amount of work (use Emotional exhaustion). Objections to the kind of work imposed, such as scripted pacing, belong under Professional autonomy unless the participant also describes added volume.",
        "borderlineCases": "Special education paperwork: code here when the account is about volume and time; double-code with Emotional exhaustion when the participant links it to depletion. Second jobs taken for income (tutoring, paid coaching) go under Salary and cost of living, and here as well only when the participant frames them as part of the working week.",
        "exampleQuote": "I covered eleven periods in January. Eleven.",
        "contextNotes": "The district's substitute shortage this year means unpaid coverage appears in almost every account; note whether the participant says coverage is paid. Counting (hours, preps, periods) seems to be how participants make the load legible to others, including to me.",
    },
    {
        "key": "mentoring",
        "createdAt": "2026-02-16 09:12",
        "name": "Mentoring quality",
        "status": "accepted",
        "includeInContextualLens": True,
        "definition": "Participants' experience of formal or informal guidance from a more experienced teacher, and their judgement of whether that guidance helped them teach.",
        "fullDescription": "Covers the district's assigned mentoring in the first two years and the informal mentoring participants find for themselves (a neighbour down the hall, a teacher in another district). The code records both the arrangement (who, how often, how matched) and its quality as participants judge it. First reads suggested that the match — same subject, same building, shared time — matters more than whether a mentor exists at all, so record those features whenever they are mentioned.",
        "includeWhen": "Descriptions of an assigned mentor, mentoring meetings, observation and feedback, or an experienced colleague who regularly gives materials, advice or feedback; judgements about whether mentoring was useful.",
        "excludeWhen": "Support among teachers at the same career stage (use Collegial trust). One-off help from an administrator (use Administrative support).",
        "borderlineCases": "An experienced colleague who informally hands over materials most days (T01's neighbour): code here, because the participant calls it the mentoring that actually happened. A group chat among early-career teachers is Collegial trust, not mentoring, even when the participant compares it with the mentoring programme; double-code only the comparison itself.",
        "exampleQuote": "She'll come watch the first ten minutes of my third period and then we'll talk about just that ten minutes.",
        "contextNotes": "The district assigns mentors for two years and requires a meeting log. Matching appears to follow availability rather than subject or building, and mentors get no release time. Teachers who return after time away are not assigned one, even when new to the building (T10).",
    },
    {
        "key": "admin",
        "createdAt": "2026-02-16 09:24",
        "name": "Administrative support",
        "status": "review",
        "includeInContextualLens": True,
        "definition": "How participants experience school and district leadership as a source — or an absence — of practical and professional backing.",
        "fullDescription": "Includes responses to requests for help, handling of discipline, evaluation and feedback, follow-up, resource decisions and the stability of leadership. Participants separate administrators being pleasant from administrators being present; the code should carry that distinction rather than a simple positive or negative valence.",
        "includeWhen": "Accounts of principals, assistant principals, deans or district staff responding (or not) to a request, an incident, an evaluation, a resignation or a concern raised in a meeting; accounts of leadership turnover.",
        "excludeWhen": "Mentoring delivered by a teacher (use Mentoring quality) unless the participant credits an administrator with arranging it. Curriculum mandates described only as limits on practice (use Professional autonomy).",
        "borderlineCases": "A principal who deliberately pairs a new teacher with a mentor in the same hallway and creates shared planning time: double-code with Mentoring quality. Answers of the “this is a district decision” kind: code here, since the participant is judging what the administrator is for.",
        "exampleQuote": "That follow-up meant more than the discipline part. I felt like someone had my back.",
        "contextNotes": "Dunmarrow has had three principals in three years. Two participants teach there, so their accounts are not independent on this point. Kept at review until applications have been compared school by school.",
    },
    {
        "key": "efficacy",
        "createdAt": "2026-02-16 09:36",
        "name": "Sense of efficacy",
        "status": "accepted",
        "includeInContextualLens": False,
        "definition": "The participant's belief, at the time of speaking, about whether they can make a difference to students' learning, together with the evidence they give for that belief.",
        "fullDescription": "Loosely follows the teacher-efficacy literature but stays with participants' own talk: a student who finally succeeds, “losing them by minute twenty”, finally feeling like “a real teacher”. Positive and negative efficacy are both coded here; record the direction in the application memo.",
        "includeWhen": "The participant judges their own competence or impact, or tells an episode they use as evidence of being (or not being) effective.",
        "excludeWhen": "Pleasure in relationships with students that is not tied to the participant's effectiveness (use Student relationships). Judgements about whether the system is effective.",
        "borderlineCases": "A student's thank-you note: Student relationships by default; code here too when the participant treats it as evidence about their teaching. Uncertainty about improving (“you can't tell if you're getting better”) counts as negative efficacy, not as neutral.",
        "exampleQuote": "That's the thing that tells me I might actually be good at this.",
        "contextNotes": "Efficacy talk is usually about a single student or a single class. Watch whether it grows with years: T04, in the fourth year, describes the best year in the classroom at the moment of leaving.",
    },
    {
        "key": "students",
        "createdAt": "2026-02-16 09:48",
        "name": "Student relationships",
        "status": "accepted",
        "includeInContextualLens": False,
        "definition": "Participants' descriptions of their connections with students — care, rapport, recognition — and the meaning they give those connections.",
        "fullDescription": "Captures the relational core of teaching as participants describe it: particular students, particular classes, moments of recognition. It often carries the weight of why participants came into teaching and is where they locate what they would lose by leaving.",
        "includeWhen": "Talk about particular students or classes with affection or concern, moments of connection, notes or comments from students, knowing students' families, or missing students.",
        "excludeWhen": "Classroom management described only as disruption (use Sense of efficacy if the participant draws conclusions about their competence). Requests for resources on a student's behalf, unless the relationship itself is described.",
        "borderlineCases": "“The kids” given as a reason to stay: double-code with Staying anchors. Knowing students' families through community ties: code here and under Staying anchors.",
        "exampleQuote": "So I'm leaving the job, not them, if that makes sense.",
        "contextNotes": "Nearly everyone says “the kids”. Do not treat it as self-explanatory: application memos should record what exactly about the relationship the participant names.",
    },
    {
        "key": "salary",
        "createdAt": "2026-02-16 10:00",
        "name": "Salary and cost of living",
        "status": "accepted",
        "includeInContextualLens": True,
        "definition": "References to pay, benefits, housing, debt or living costs, and to how these shape the kind of life teaching allows.",
        "fullDescription": "Includes comparisons of pay (neighbouring districts, former careers, friends), housing arrangements (roommates, living with parents, commuting from cheaper towns), second jobs, and one-off financial shocks. Participants often describe a running calculation; the code captures both the figures and the act of calculating.",
        "includeWhen": "Mentions of salary, stipends, benefits, rent, housing, commuting for cheaper housing, second jobs for income, financial cushions (a partner's income, savings, paid-down housing) or comparisons with other districts or occupations.",
        "excludeWhen": "Budget decisions about resources for students (use Administrative support).",
        "borderlineCases": "The workload-to-pay ratio (T09): code here and note the comparison in the memo. Living with parents: code here; code Staying anchors as well only when the participant presents it as a reason to stay rather than as what makes staying affordable.",
        "exampleQuote": "I'm thirty, I'm working three jobs, and I'm still in an apartment with a roommate.",
        "contextNotes": "Participants say Pellbrook rents rose after the distribution centre opened; I have not checked figures and report this as their account. Tallis County, the neighbouring district, pays more at equivalent steps. Financial cushions are unevenly spread and shape who can afford to stay.",
    },
    {
        "key": "collegial",
        "createdAt": "2026-02-16 10:12",
        "name": "Collegial trust",
        "status": "review",
        "includeInContextualLens": False,
        "definition": "Trust and mutual support among teachers, especially peers and department colleagues, as distinct from mentoring or leadership.",
        "fullDescription": "Covers department cohesion, lunch groups, sharing materials among peers, covering for one another, networks across schools (such as a group chat), and the wearing away of these networks as colleagues leave. Also covers the absence of colleagues where participants would expect them.",
        "includeWhen": "Descriptions of relying on, sharing with, or being looked out for by colleagues; isolation where colleagues would be expected; colleagues leaving and what that does to trust.",
        "excludeWhen": "A more experienced colleague in a regular guiding role (use Mentoring quality).",
        "borderlineCases": "Co-teaching: code here when the participant describes trust or its absence (“treats me like an aide”). Being the only teacher of a subject in a school (T09): code here as the absence of collegial support.",
        "exampleQuote": "They wanted what was good for me more than they wanted me to stay.",
        "contextNotes": "Collegial trust can support staying and can also ease leaving (T04's department told them to go). Record the direction in the memo. Kept at review: the boundary with Mentoring quality is still moving.",
    },
    {
        "key": "exhaustion",
        "createdAt": "2026-02-16 10:24",
        "name": "Emotional exhaustion",
        "status": "review",
        "includeInContextualLens": False,
        "definition": "Expressions of emotional depletion — being used up, dread, crying, numbness — that the participant attributes to the work.",
        "fullDescription": "Grounded in participants' language rather than a burnout inventory. Captures the felt experience (“a deep tired”, “Sunday dread”) and its spill-over into life outside work. Kept separate from Workload intensity: a participant may describe a heavy load calmly, or depletion without a heavy load.",
        "includeWhen": "The participant describes feeling drained, dreading work, crying, losing interests outside work, or not recovering between weeks.",
        "excludeWhen": "Ordinary tiredness mentioned in passing. Frustration aimed at a policy (use Professional autonomy or Administrative support).",
        "borderlineCases": "“Burned out” used in order to reject the label (T04: “I'm not burned out on teaching”): code here with a memo, since the participant is negotiating the category. Marking at the kitchen table late at night: Workload intensity unless depletion is described.",
        "exampleQuote": "I've already used everything up by Friday.",
        "contextNotes": "Participants sometimes laughed while describing this. I have not read laughter as lightness; check the source memo for tone before interpreting.",
    },
    {
        "key": "autonomy",
        "createdAt": "2026-02-16 10:36",
        "name": "Professional autonomy",
        "status": "draft",
        "includeInContextualLens": False,
        "definition": "How much control participants feel they have over what and how they teach, and how they value that control.",
        "fullDescription": "Includes curriculum mandates, pacing calendars, common assessments, gradebook checks, and the opposite condition of near-total freedom. The focus group showed that freedom can feel like neglect; the code stays draft while I decide whether “autonomy” and “being ignored” should be separate codes.",
        "includeWhen": "Talk about choosing or being required to use curriculum, pacing or assessments; being monitored; freedom to design units; comparisons between earlier and current discretion.",
        "excludeWhen": "Decisions about one's career (use Leaving intentions or Staying anchors).",
        "borderlineCases": "Total freedom with no oversight (T06, T09): code here, and under Collegial trust too if isolation is described. Scripted curriculum framed as making the participant replaceable: double-code with Sense of efficacy.",
        "exampleQuote": "I didn't become a teacher to read someone else's slides.",
        "contextNotes": "Last year's literacy curriculum adoption bears hardest on English teachers; other subjects describe department-level rather than district-level controls.",
    },
    {
        "key": "leaving",
        "createdAt": "2026-02-16 10:48",
        "name": "Leaving intentions",
        "status": "accepted",
        "includeInContextualLens": True,
        "definition": "Statements of intention, plans or concrete steps to leave the school, the district or teaching, including ambivalence about staying.",
        "fullDescription": "Captures the stage of leaving talk — wondering, calculating, applying, accepted — and its destination (another district, another occupation). The code keeps leaving the district apart from leaving teaching, because participants insist on that difference.",
        "includeWhen": "The participant describes applying for, accepting or considering other jobs; a timeline for leaving; conditions under which they would leave; the process of resigning.",
        "excludeWhen": "Reasons for staying with no reference to leaving (use Staying anchors).",
        "borderlineCases": "Conditional statements (“if I still can't afford a one-bedroom…”): code here, as leaving under consideration. Moving to another district while staying in teaching: code here and note the destination in the memo.",
        "exampleQuote": "Not leaving teaching, I want to be clear on that. I'm leaving the district.",
        "contextNotes": "Two participants have accepted other jobs (T02 in instructional design, T04 in Tallis County) and one is interviewing (T08). T10 left in 2023 and came back in 2025. No participant described an exit interview.",
    },
    {
        "key": "anchors",
        "createdAt": "2026-02-23 09:10",
        "name": "Staying anchors",
        "status": "draft",
        "includeInContextualLens": True,
        "definition": "What participants name as holding them in the profession or the district despite reasons to leave.",
        "fullDescription": "Emerged while coding T05, whose account of staying rests on home, family and community rather than on the job adding up. Includes ties of place and family, particular students, a craft still being learned, and peer networks. The code records what anchors participants, not whether they will in fact stay.",
        "includeWhen": "The participant gives a reason for staying or for not yet leaving, or describes what they would miss.",
        "excludeWhen": "General positive remarks about the job that are not offered as a reason to stay.",
        "borderlineCases": "“The kids” as the reason to stay: code here and under Student relationships. Financial cushions that make staying possible (living with parents, a partner's income): code under Salary and cost of living, and here only if the participant frames them as what keeps them.",
        "exampleQuote": "I'm not here because it adds up. I'm here because it's home",
        "contextNotes": "Added on 23 February; T01, T03 and T04 were re-read and recoded for it on 26 February. Still draft: “anchor” may suggest more stability than participants describe.",
    },
    {
        "key": "other-work",
        "createdAt": "2026-02-26 17:00",
        "name": "Comparison with other work",
        "status": "draft",
        "includeInContextualLens": True,
        "definition": "How participants measure teaching against work outside it — jobs they have held, are moving to or imagine — judged by what the work is like: its purpose, pace, discretion, recognition and the life it leaves room for.",
        "fullDescription": "Emerged from T10, who left for a training job at the distribution centre and came back two years later: the only account in which the other side of the comparison has been lived rather than imagined. Other participants compare too — with a former laboratory career, with friends in better-paid work, with a job offer being weighed — but mostly in pay and hours. T10 compares the work itself and finds the difference where the sum did not reach. The code records the comparison and the terms it is made in, so that imagined and lived alternatives can be read against each other.",
        "includeWhen": "The participant describes a former, prospective or imagined occupation outside school teaching, or the work of friends or family, and uses it to judge what teaching is or is not: the judgement it asks for, whether anyone's learning depends on it, its hours, its recognition, how much of it they control.",
        "excludeWhen": "Pay or benefit comparisons that say nothing about the work itself (use Salary and cost of living). Moving to another district while staying in teaching (use Leaving intentions). Comparisons between schools or subjects within teaching.",
        "borderlineCases": "A job offer being weighed (T02, T08): Leaving intentions by default; code here as well when the participant says what the other work is like or what they expect to miss. Pay comparisons with other occupations that the participant qualifies by the work (T01: “I'm not saying I'd do that job”): code under Salary and cost of living and here. Competence in a non-teaching job (T10 training adults): code here, not under Sense of efficacy, which is kept for students' learning.",
        "exampleQuote": "Last time I thought the other side of the gap was a life. It was a schedule.",
        "contextNotes": "Added on 26 February after transcribing T10; the earlier transcripts were re-read and coded for it on 27 February. Two participants have worked outside teaching (T03 for nine years, T10 for two) and two are moving or may move to other work (T02, T08). Imagined alternatives tend to be described in pay and hours, lived ones in purpose and recognition; record which in the memo. Having another career to compare with is itself unevenly spread. Still draft: it may turn out to be a dimension of Leaving intentions and Staying anchors rather than a code of its own.",
    },
]

CATEGORIES = [
    {
        "key": "conditions",
        "createdAt": "2026-02-27 14:00",
        "name": "Conditions of work",
        "codes": ["workload", "salary", "exhaustion"],
        "memo": "The material and felt conditions of the job: what it demands, what it pays, and what it costs the person. Grouped because participants rarely separate them — hours, rent and dread turn up in the same breath.",
    },
    {
        "key": "relational",
        "createdAt": "2026-02-27 14:20",
        "name": "Relational support",
        "codes": ["mentoring", "admin", "collegial"],
        "memo": "Who is around the teacher: assigned mentors, administrators and peers. The common thread is not whether support exists but whether the person giving it can see the teacher's classroom and responds.",
    },
    {
        "key": "identity",
        "createdAt": "2026-02-27 14:40",
        "name": "Professional identity and practice",
        "codes": ["efficacy", "autonomy", "students"],
        "memo": "How participants understand themselves as teachers: whether they are getting good at it, whether the classroom is theirs, and what their students mean to them. Autonomy sits here rather than under conditions because participants talk about it as a matter of who they are (“a technician”), not of hours.",
    },
    {
        "key": "decisions",
        "createdAt": "2026-02-27 15:00",
        "name": "Career decision-making",
        "codes": ["leaving", "anchors", "other-work"],
        "memo": "Where the other categories converge: what participants say pushes them out and what holds them. Kept as a separate category so that staying and leaving can be read against each other rather than as opposites on one scale. Comparison with other work belongs here because participants weigh staying and leaving against a picture of the work on the other side, and T10 is the one who checked the picture.",
    },
]

THEMES = [
    {
        "key": "presence",
        "createdAt": "2026-03-03 10:00",
        "name": "Support is felt as presence, not provision",
        "codes": ["mentoring", "admin", "collegial"],
        "categories": ["relational"],
        "memo": "Built from the contrast between the matched mentors of T03 and T08 and the mismatched ones of T01, T07 and T09. T01's neighbour and T06's group chat show teachers putting together for themselves the presence the formal programme did not supply. The phrase “presence, not provision” came from re-reading T01 on the mentor who “couldn't see my classroom”.",
        "interpretiveClaim": "Early-career teachers in Pellbrook judge support not by whether it has been provided — a mentor assigned, a procedure in place — but by whether someone who can see their classroom is present and responds. Where support is matched and close at hand (same subject, same hallway, follow-up after an incident), participants describe learning a craft; where it is formal but distant, they build their own networks or begin to detach.",
        "contextLens": "The district pairs mentors by availability and gives them no release time, so mismatch is a feature of the programme rather than bad luck. Leadership turnover at Dunmarrow limits what presence from administrators can mean there. Esker Hill's more stable leadership may mean part of this theme reflects differences between schools rather than a district-wide pattern.",
        "counterEvidence": "T08 had a well-matched, willing mentor and is still interviewing for a lab job: good support does not secure staying. T04 had strong trust in the department and is leaving anyway; there, collegial presence eased the departure rather than preventing it.",
    },
    {
        "key": "students",
        "createdAt": "2026-03-03 15:30",
        "name": "The students who hold them also wear them down",
        "codes": ["students", "exhaustion", "anchors", "efficacy"],
        "categories": ["identity", "decisions"],
        "memo": "Came from reading T05 and T02 side by side: one staying because of students, one leaving despite them, both describing the weight of the relationship. Sense of efficacy is included because participants' sense of being good at the job is nearly always told through a particular student. Not yet staged for the report — the claim still risks reading as a truism.",
        "interpretiveClaim": "Relationships with students are the reason to stay that participants name most often, and the same relationships carry an emotional load they experience as depleting. Staying is therefore not a matter of rewards outweighing costs: the anchor and the weight are the same thing, and participants describe care as both what sustains them and what they cannot put down.",
        "contextLens": "Participants with local roots (T05) meet students as members of a community whose lives continue outside school, which deepens both the anchoring and the weight. Special education case management adds formal responsibility for students' futures that general education participants do not describe.",
        "counterEvidence": "T02 is strongly attached to students and is leaving anyway, separating “the job” from “them”. T09 places the difficulty in the ratio of workload to pay rather than in emotional load and did not link exhaustion to students.",
    },
    {
        "key": "calculation",
        "createdAt": "2026-03-04 11:00",
        "name": "Leaving as a calculation that never closes",
        "codes": ["salary", "workload", "leaving", "autonomy", "other-work"],
        "categories": ["conditions", "decisions"],
        "memo": "Revised after the member check on 16 March. The first claim described leaving as arithmetic; T02 and T04 both found that too tidy, and T02's decision “wasn't the list” but an inability to picture a future in the job. The claim now carries that future-picturing element, and autonomy and career path are named as terms in the calculation, not only pay. Comparison with other work was linked once T10 was coded: the one participant who acted on the calculation found it had misjudged the other side.",
        "interpretiveClaim": "Participants who leave or consider leaving describe a running calculation of salary, rent, hours and the years ahead, and the turning point comes when they conclude the gap will never close — that they cannot picture a version of the job they could sustain. Leaving the district and leaving teaching are different outcomes of that calculation, and autonomy and a visible career path enter it as terms that could change the result.",
        "contextLens": "Rising rents in Pellbrook and a better-paying neighbouring district make the calculation unusually visible here, and the distribution centre that pushed rents up also offers former teachers a way out. Participants with financial cushions (T03's paid-down house, T06 living with parents) describe it as something others face; T10 could return only once a partner's job carried the health insurance. With no exit interviews, the district does not see the calculation being made.",
        "counterEvidence": "T05 refuses the calculation outright (“I've never done the math, because if I did the math I'd probably leave”). T09 says pay is not the main issue. T02 says the decision “wasn't the list”, which is why the claim was widened beyond pay. T10 made the calculation, left, and came back two years later: the other side of the gap “was a schedule”, so leaving did not close the calculation either.",
    },
]


# ---------------------------------------------------------------------------
# Coding
# ---------------------------------------------------------------------------
# Each application names its segment by a phrase that must occur in exactly
# one segment of that source. With excerpt=True the phrase is also stored as
# the highlighted excerpt; otherwise the whole turn is coded. Sessions mirror
# how the coding was actually done: one sitting per transcript, and a recoding
# pass over the earlier transcripts whenever a new code appeared (Staying
# anchors, then Comparison with other work).

SESSIONS = [
    ("2026-02-17 13:00", [
        ("T01", "workload", "So three different preps.", True, "Counts preps; the jump from two to three came without warning."),
        ("T01", "workload", "Sunday is grading day", False, "Weekends only partly protected; course built from an old binder."),
        ("T01", "mentoring", "she couldn't see my classroom", True, "Assigned mentor in another building; meetings were check-ins and a log."),
        ("T01", "mentoring", "That's the mentoring that actually happened.", False, "Informal mentoring from the teacher next door, unassigned and unrecognised."),
        ("T01", "admin", "it's not hostile, it's just far away", True, "Distance rather than hostility: fair walkthroughs, generic advice."),
        ("T01", "efficacy", "I might actually be good at this", True, "Positive efficacy, anchored on one student's retake."),
        ("T01", "students", "asked if he could redo the quiz", False, "Recognition moment with a Math Support student."),
        ("T01", "efficacy", "you can't tell if you're getting better", True, "Negative efficacy: not failure but not being able to see growth."),
        ("T01", "salary", "My rent went up again in August", True, "Rent rises tied to the distribution centre; two roommates at twenty-six; comparison with college friends. “I do the math” is the calculating stance in the participant's own words."),
        ("T01", "leaving", "If I still have three preps and I still can't afford a one-bedroom", False, "Conditional leaving talk that binds workload and pay together."),
    ]),
    ("2026-02-18 13:00", [
        ("T02", "autonomy", "I didn't become a teacher to read someone else's slides.", True, "Scripted literacy curriculum with pacing checks; loss of a classroom that was “mine”."),
        ("T02", "efficacy", "I could be replaced by anybody who can click", True, "Negative: deskilling rather than incompetence. Double-coded with autonomy under the borderline rule."),
        ("T02", "exhaustion", "that's when the Sunday dread started", False, "Dread dated to the curriculum change; the partner noticed it first."),
        ("T02", "exhaustion", "I've already used everything up by Friday.", True, "No recovery between weeks; reading for pleasure lost."),
        ("T02", "workload", "for a hundred and forty kids", False, "Student load given inside the depletion account; double-coded."),
        ("T02", "admin", "We've had three principals in three years.", False, "Leadership turnover and initiative fatigue; “what are you for?”"),
        ("T02", "collegial", "It's hard to build trust with people when you're all sort of half out the door.", False, "Peer network wearing away as colleagues leave."),
        ("T02", "leaving", "it wasn't the list", True, "Accepted an instructional design job. The decision is framed as not being able to picture a future, not as a tally. Important for the calculation theme."),
        ("T02", "autonomy", "if I'd had my room back", False, "Autonomy named as what would have kept the participant."),
        ("T02", "admin", "There's no exit interview.", True, "Leaving goes unasked about; the interview became the first conversation about it."),
        ("T02", "students", "I'm leaving the job, not them", True, "Attachment to students separated from the job."),
    ]),
    ("2026-02-19 09:30", [
        ("T03", "efficacy", "two hundred tiny judgment calls a period", False, "Career changer contrasting lab protocol with classroom judgement."),
        ("T03", "mentoring", "We meet every Tuesday, and it's not a checklist meeting.", False, "Weekly, observation-based, granular feedback; contrast with T01's log-driven meetings."),
        ("T03", "admin", "she'd picked someone in my hallway on purpose", True, "Principal matched the mentor deliberately. Double-coded with mentoring."),
        ("T03", "mentoring", "she got us a shared planning period", False, "Shared time made the mentoring possible; the participant learned later how unusual this was."),
        ("T03", "admin", "I felt like someone had my back.", True, "Follow-up after an incident valued above the discipline itself."),
        ("T03", "workload", "a hundred and ten students", False, "Weekly lab reports marked at the kitchen table until late; described without depletion, so not coded Emotional exhaustion."),
        ("T03", "efficacy", "still an apprentice at teaching", True, "Mixed efficacy, partly borrowed from the mentor's reassurance."),
        ("T03", "salary", "forty percent pay cut", False, "Financial cushion from a previous career; the participant names it as privilege."),
    ]),
    ("2026-02-20 14:00", [
        ("T04", "leaving", "I'm leaving the district.", True, "Accepted a post in Tallis County; insists on district, not teaching."),
        ("T04", "exhaustion", "I'm not burned out on teaching", True, "Rejects the burnout label and relocates the strain to money. Coded under the borderline rule."),
        ("T04", "salary", "about eleven thousand more", False, "Step-for-step comparison with the neighbouring district; cheaper health plan."),
        ("T04", "workload", "I coach soccer for a stipend", True, "Coaching and tutoring counted as part of the working week; double-coded with salary."),
        ("T04", "salary", "put the repair on a credit card", False, "Financial shock that turned a running worry into a decision."),
        ("T04", "leaving", "The gap is never going to close here.", True, "The turning point: the conclusion that the gap will not close."),
        ("T04", "collegial", "That's the kind of trust I mean.", False, "Department trust that supports leaving: colleagues told the participant to go."),
        ("T04", "admin", "Okay, we'll post the position.", False, "Resignation met with procedure; no career conversation since the first year."),
        ("T04", "efficacy", "I finally feel like a real teacher.", True, "Best year in the classroom coincides with leaving the district."),
        ("T04", "leaving", "there's nothing between", False, "No career path short of administration; would have stayed for less money with one."),
    ]),
    ("2026-02-23 10:00", [
        ("T05", "workload", "Every IEP meeting is hours of prep", False, "Caseload paperwork displaces co-teaching planning; “it all dominoes”."),
        ("T05", "exhaustion", "holding twenty-two kids' whole futures in a folder", True, "Crying in the car before school; depletion tied to responsibility for students' futures."),
        ("T05", "students", "I was going to drop one", True, "Care experienced as weight; double-coded with exhaustion."),
        ("T05", "collegial", "whoever's having the worse day gets the good coffee", False, "Peer ritual with the other special education teacher as a “lifeline”; co-teaching trust varies."),
        ("T05", "admin", "I was told there's no budget", False, "Responsive assistant principal, but a resource request ended at budget."),
        ("T05", "anchors", "My mom lives ten minutes away.", False, "Family and place; former teachers now colleagues."),
        ("T05", "anchors", "I'm here because it's home", True, "Staying framed against the job adding up. The account that prompted this code."),
        ("T05", "students", "these kids are kids I'd see around town anyway", True, "Students as community members whose lives continue outside school."),
        ("T05", "salary", "I've never done the math", True, "Refuses the calculation; negative case for the calculation theme."),
        ("T05", "efficacy", "I feel like I'm good at the kids and bad at the paperwork", True, "Split efficacy: strong with students, weak with the system that audits."),
    ]),
    ("2026-02-25 13:30", [
        ("FG1", "workload", "a prep period that gets taken for coverage three times a week", False, "T07: planning time lost to coverage during the substitute shortage."),
        ("FG1", "workload", "I covered eleven periods in January.", True, "T08: unpaid coverage under an unclear threshold."),
        ("FG1", "mentoring", "My mentor was a math teacher.", False, "T09: subject mismatch; found a music mentor online in another district."),
        ("FG1", "collegial", "There's nobody in my subject to talk to.", True, "T09: single-subject isolation."),
        ("FG1", "mentoring", "how do I teach the subjunctive", False, "T07: kind mentor, generic advice; no subject knowledge to draw on."),
        ("FG1", "mentoring", "My mentoring was good, actually.", True, "T08: matched mentor who handed over every lab. Offered with an apology, which suggests group pressure towards complaint."),
        ("FG1", "mentoring", "She'd asked to be a mentor.", False, "T08: volunteered versus assigned mentors."),
        ("FG1", "autonomy", "Freedom and being ignored kind of look the same sometimes.", True, "T06: freedom that feels like neglect; the reason this code is still draft."),
        ("FG1", "autonomy", "my department head checks our gradebooks every Friday", False, "T07: monitoring read as distrust."),
        ("FG1", "autonomy", "I have total autonomy and total isolation.", True, "T09: freedom over repertoire, alone with every concert."),
        ("FG1", "salary", "That's the only reason the math works.", False, "T06: living with parents as the condition of affording the job."),
        ("FG1", "salary", "It's the workload-to-pay ratio, not the pay.", True, "T09: pay second to load; negative case for a pay-only reading."),
        ("FG1", "anchors", "The kids. That's a cliché, I know.", False, "T07: a specific moment of language coming alive, named as what would be missed."),
        ("FG1", "collegial", "That chat has done more for me than the official mentoring program.", True, "T06: cross-district peer chat; everyone shows up on bad days."),
        ("FG1", "mentoring", "than the official mentoring program", False, "T06 comparison segment, double-coded under the borderline rule."),
        ("FG1", "leaving", "I'm interviewing for a job in a lab.", False, "T08: ambivalent; expects to take the job and to miss teaching."),
    ]),
    ("2026-02-26 10:00", [
        ("T01", "anchors", "But if Math Support keeps going like it is", False, "Recoded: the class that is going well is what keeps the question open."),
        ("T03", "anchors", "I feel like I'm learning a craft, and I have someone teaching it to me.", True, "Recoded: the anchor is the mentoring relationship itself, and it is conditional."),
        ("T04", "anchors", "I'm leaving because I care about still being able to do this in ten years.", True, "Recoded: anchored to teaching as a profession, not to the district."),
        ("T02", "anchors", "That's the part I'm not okay with.", False, "Recoded: what would be missed. Anchors that did not hold."),
    ]),
    ("2026-02-27 09:00", [
        ("T10", "salary", "nine thousand more to start", True, "The outside offer: more pay, a bonus and a day that ended at five. Loans on a teacher's salary."),
        ("T10", "leaving", "Everybody does the spreadsheet.", True, "Retrospective: left in June 2023. The spreadsheet recurs through the interview as the participant's own figure for the calculation."),
        ("T10", "workload", "a hundred and fifty-some students", True, "Third-year load before leaving, with speech and debate coaching on top."),
        ("T10", "other-work", "I could stand in front of forty adults at six in the morning", False, "Competence carried into the training job: good reviews, evenings back, novels again."),
        ("T10", "autonomy", "I wasn't allowed to change a slide", True, "Modules locked by compliance: the scripted material T02 left teaching over, met outside it in a stricter form."),
        ("T10", "exhaustion", "I used to have Sunday dread.", True, "“Sunday dread” unprompted, the phrase flagged in T02's memo; remembered from year three."),
        ("T10", "other-work", "Out there I had Sunday nothing.", True, "The lived comparison: the dread lifted and nothing took its place. The segment that prompted this code."),
        ("T10", "students", "She still talks about that poetry slam.", True, "Recognition arriving second-hand, through a former student's brother, at the training job."),
        ("T10", "other-work", "It just wasn't that kind of work.", True, "Not the people but the work: being good at it changed nothing for anyone's learning."),
        ("T10", "salary", "the math didn't have to work on my salary alone", True, "A partner's job with health insurance made the return affordable; named plainly as part of it. Returned two steps lower, still below the centre's pay."),
        ("T10", "anchors", "But I could see a version of it I could do.", True, "The reverse of T02's “couldn't picture myself at thirty-five”: returning once a sustainable version can be pictured."),
        ("T10", "admin", "then she actually wrote down what I said", True, "Asked at hiring why they had left; nobody asked at the resignation. Same principal as T03."),
        ("T10", "workload", "I say no to everything that isn't students", False, "Came back with limits on the load: no coaching, no committees this year, marking only in the building."),
        ("T10", "workload", "I've covered nine periods since Christmas.", True, "Coverage is the one limit that cannot be set. Tired “where you sleep”: load without the depletion of year three."),
        ("T10", "efficacy", "Some days I have no idea what I'm doing.", True, "New subject and low confidence, held together with the sense that it matters either way."),
        ("T10", "other-work", "At the centre I was good at it and it didn't matter.", True, "Efficacy measured against work where being good had no consequence for anyone; double-coded with efficacy on the same turn."),
        ("T10", "mentoring", "on paper I'm a fourth-year", True, "Returners fall outside the two-year programme. Sitting in on the Spanish teachers' classes stood in for it."),
        ("T10", "collegial", "texted me in August", False, "Former colleagues' joke and welcome; ties kept across the two years away."),
        ("T10", "leaving", "I'd do the spreadsheet again", True, "Conditional: the partner's job and the prep period are the terms. Would leave “knowing what I was leaving for”."),
        ("T10", "other-work", "Last time I thought the other side of the gap was a life. It was a schedule.", True, "The comparison settled by living it; “the gap” echoes T04."),
        ("T10", "anchors", "it doesn't have a row for what you'll miss", True, "What the calculation leaves out, in the participant's words."),
        ("T10", "admin", "if somebody had asked me", True, "No exit conversation; the participant thinks one could have changed the outcome. Compare T02 and T04."),
    ]),
    ("2026-02-27 11:30", [
        ("T01", "other-work", "I'm not saying I'd do that job", True, "Recoded: the better-paid alternative weighed in money and set aside as work."),
        ("T02", "other-work", "and I can work from home", True, "Recoded: the new job described by its terms (pay, place), not yet by its work."),
        ("T03", "other-work", "I liked the kids more than the instruments", True, "Recoded: nine stable, “very boring” years in a lab, and teaching chosen against them."),
        ("T03", "other-work", "In the lab, you follow the protocol.", True, "Recoded: the former work as the measure of what teaching asks — judgement, not protocol."),
        ("T04", "other-work", "you're going to sell real estate", True, "Recoded: the stereotype of the outside job, rejected; leaving the district is not a move to other work."),
        ("FG1", "other-work", "then I'll miss this every day", True, "Recoded: T08 already expects to miss teaching before taking the lab job."),
    ]),
]

# Minutes between successive applications within a sitting; varied so the
# timeline looks like coding rather than a metronome.
APPLICATION_STEPS = [4, 7, 3, 6, 5]

QUOTES = [
    {
        "key": "q-mentor-ten-minutes", "createdAt": "2026-03-05 10:00", "source": "T03",
        "text": "She'll come watch the first ten minutes of my third period and then we'll talk about just that ten minutes. Like, really granular.",
        "codes": ["mentoring"], "themes": ["presence"], "role": "exemplar",
        "memo": "Observation-based mentoring in a deliberately matched pairing.",
        "rationale": "Shows concretely what presence looks like: the mentor sees the classroom and responds to ten particular minutes.",
    },
    {
        "key": "q-mentor-cannot-see", "createdAt": "2026-03-05 10:20", "source": "T01",
        "text": "It just — she couldn't see my classroom, you know, she didn't know my kids.",
        "codes": ["mentoring"], "themes": ["presence"], "role": "supporting",
        "memo": "Assigned but distant mentor.",
        "rationale": "The contrasting case to the exemplar, in the participant's words; the two read well side by side.",
    },
    {
        "key": "q-group-chat", "createdAt": "2026-03-05 10:45", "source": "FG1",
        "text": "It's mostly memes, but when someone has a terrible day, everyone shows up. That chat has done more for me than the official mentoring program.",
        "codes": ["collegial", "mentoring"], "themes": ["presence"], "role": "supporting",
        "memo": "T06 on the cross-district peer chat.",
        "rationale": "Teachers building presence for themselves where the formal programme does not supply it; “everyone shows up” is the theme in three words.",
    },
    {
        "key": "q-lab-interview", "createdAt": "2026-03-05 11:05", "source": "FG1",
        "text": "I'll be honest, I'm interviewing for a job in a lab. I haven't decided. I think if I get it, I'll probably take it, and then I'll miss this every day.",
        "codes": ["leaving"], "themes": ["presence"], "role": "counterExample",
        "memo": "T08, the best-mentored participant in the focus group, is still likely to leave.",
        "rationale": "Keeps the theme from implying that good mentoring secures retention.",
    },
    {
        "key": "q-asked-why-i-left", "createdAt": "2026-03-05 11:20", "source": "T10",
        "text": "In my interview here the principal asked me why I'd left the first time, and then she actually wrote down what I said. Nobody asked me that when I left — I handed in a letter and that was it.",
        "codes": ["admin"], "themes": ["presence"], "role": "supporting",
        "memo": "A returner asked at hiring what no one asked at resignation.",
        "rationale": "Presence at the point of entry, set against the absence of any exit conversation. Same principal as T03, so read it with T03's account rather than as independent confirmation.",
    },
    {
        "key": "q-because-its-home", "createdAt": "2026-03-05 14:10", "source": "T05",
        "text": "I'm not here because it adds up. I'm here because it's home, and these kids are kids I'd see around town anyway. Somebody from here should be teaching them.",
        "codes": ["anchors", "students"], "themes": ["students"], "role": "exemplar",
        "memo": "Staying grounded in place and in students as neighbours.",
        "rationale": "The clearest statement that what holds the participant is the students' place in a shared community, not the terms of the job.",
    },
    {
        "key": "q-futures-in-a-folder", "createdAt": "2026-03-05 14:30", "source": "T05",
        "text": "I just felt like I was holding twenty-two kids' whole futures in a folder and I was going to drop one.",
        "codes": ["exhaustion", "students"], "themes": ["students"], "role": "supporting",
        "memo": "The same students, now as weight.",
        "rationale": "Pairs with the exemplar from the same interview: the anchor and the weight are the same students.",
    },
    {
        "key": "q-leaving-the-job", "createdAt": "2026-03-06 09:30", "source": "T02",
        "text": "So I'm leaving the job, not them, if that makes sense. But it doesn't feel like that to them, I know.",
        "codes": ["students"], "themes": ["students"], "role": "counterExample",
        "memo": "Strong attachment to students that did not hold the participant.",
        "rationale": "Shows the relationship can be separated from the job; students anchor some participants but not all.",
    },
    {
        "key": "q-napkin", "createdAt": "2026-03-06 10:00", "source": "T04",
        "text": "I sat there doing the numbers on a napkin, and I thought: this is never going to close. The gap is never going to close here.",
        "codes": ["leaving", "salary"], "themes": ["calculation"], "role": "exemplar",
        "memo": "The turning point of the calculation.",
        "rationale": "Captures both the calculating and the moment of concluding that the gap will not close, which is the core of the claim.",
    },
    {
        "key": "q-never-done-the-math", "createdAt": "2026-03-06 10:25", "source": "T05",
        "text": "I've never done the math, because if I did the math I'd probably leave.",
        "codes": ["salary", "anchors"], "themes": ["calculation"], "role": "counterExample",
        "memo": "Deliberate refusal to calculate.",
        "rationale": "The strongest negative case for the theme: staying sustained by not doing the sum.",
    },
    {
        "key": "q-leaving-the-district", "createdAt": "2026-03-06 10:50", "source": "T04",
        "text": "So I'm leaving Pellbrook. Not leaving teaching, I want to be clear on that. I'm leaving the district.",
        "codes": ["leaving"], "themes": ["calculation"], "role": "supporting",
        "memo": "District versus profession.",
        "rationale": "The participant's own correction to how leaving is usually heard; the report should open with it.",
    },
    {
        "key": "q-gap-was-a-schedule", "createdAt": "2026-03-06 11:15", "source": "T10",
        "text": "But I'd leave knowing what I was leaving for. Last time I thought the other side of the gap was a life. It was a schedule.",
        "codes": ["other-work", "leaving"], "themes": ["calculation"], "role": "counterExample",
        "memo": "The one participant who acted on the calculation and came back.",
        "rationale": "Keeps the theme from treating leaving as the end of the calculation: the sum that sent T10 out had misjudged the other side, and T10 ran it again in the other direction.",
    },
    {
        "key": "q-no-row", "createdAt": "2026-03-06 11:40", "source": "T10",
        "text": "Do the spreadsheet, honestly. It's not wrong. Just know it doesn't have a row for what you'll miss.",
        "codes": ["anchors", "other-work"], "themes": ["calculation"], "role": "supporting",
        "memo": "Advice to a third-year teacher in T10's old position.",
        "rationale": "Agrees with T02's “wasn't the list” from the opposite outcome: the calculation is real but leaves out what holds people.",
    },
    {
        "key": "q-picture-at-thirty-five", "createdAt": "2026-03-16 18:40", "source": "T02",
        "text": "But in the end it wasn't the list. It was that I couldn't picture myself at thirty-five still doing this.",
        "codes": ["leaving"], "themes": ["calculation"], "role": "supporting",
        "memo": "Pinned after the member check with T02.",
        "rationale": "Carries the revised claim: the calculation ends when a sustainable future cannot be pictured, not when a list is totalled.",
    },
]

# Newest first, as the workbench lists them.
LENS_REVIEWS = [
    {
        "key": "review-calculation", "theme": "calculation",
        "createdAt": "2026-03-10 11:00", "updatedAt": "2026-03-16 18:30",
        "context": "A town where rents are rising and the neighbouring district pays more at every step; no exit interviews, so leaving is invisible to the district until it happens.",
        "voice": "The calculation is voiced most clearly by participants who have already decided (T02, T04) and by T10, looking back on a decision since reversed. Their accounts are partly retrospective and may tidy a messier process into a sum.",
        "powerPosition": "Participants with financial cushions are positioned to stay and those without are positioned to leave. For some, the “choice” this theme describes is not much of a choice.",
        "representation": "Framing leaving as calculation risks making participants look transactional — exactly what T04 asked me not to do when writing this up.",
        "counterPatterns": "T05 refuses the calculation; T09 puts pay second to workload; T02 says the decision “wasn't the list”; T10 acted on it, left, and came back.",
        "consequences": "A finding framed only around pay could justify a stipend-only response and leave autonomy and career paths untouched, though participants named both.",
        "analyticAction": "Take the claim to a member check with T02 and T04. Name autonomy and career path in the theme. Report T05's refusal as a counter-pattern in the body, not a footnote. (16 March: member check held; claim revised to include the future participants cannot picture.)",
    },
    {
        "key": "review-admin", "code": "admin",
        "createdAt": "2026-03-09 14:00", "updatedAt": "2026-03-09 14:00",
        "context": "Leadership turnover at Dunmarrow and a district-wide substitute shortage that keeps administrators firefighting.",
        "voice": "Two of the six interviewees teach at Dunmarrow, and their critical accounts dominate this code. The supportive accounts from Esker Hill come from T03 and T10, who describe the same principal, so they are not independent either.",
        "powerPosition": "Participants were describing the people who evaluate them. Several chose places away from school to talk (T04: “nobody from school comes here”), which suggests caution about what they say on this subject.",
        "representation": "Administrators are not participants, so the code shows leadership only as seen from the classroom. I should not write about administrators' intentions.",
        "counterPatterns": "T03, T05 and T10 describe specific, responsive acts by administrators. The pattern is not “bad leadership” but whether anyone is present after the request.",
        "consequences": "Careless reporting could identify Dunmarrow and, through it, individual participants. Findings could also be read as blaming individual principals for turnover the district's own arrangements produce.",
        "analyticAction": "Keep the code at review. Compare applications school by school in the next pass. In the report, refer to schools by letter and aggregate findings about administration across schools.",
    },
]

MEMBER_CHECKS = [
    {
        "key": "check-presence", "when": "2026-03-14 17:30", "date": "March 14, 2026",
        "finding": "Support is judged by presence, not provision",
        "outcome": "Confirmed, with a refinement",
        "feedback": "T01, T03 and T05 read a two-page summary and replied by email. T03 agreed strongly and added that the shared planning period is what made the mentor's presence possible — presence needs time someone has set aside. T01 agreed but asked that the teacher next door not be described in any way that could identify him. T05 said the theme fitted the other special education teacher better than the administrators. Refinement noted in the theme memo; identifying detail removed from report notes.",
    },
    {
        "key": "check-calculation", "when": "2026-03-16 18:00", "date": "March 16, 2026",
        "finding": "Leaving follows a calculation that never closes",
        "outcome": "Partly confirmed; claim revised",
        "feedback": "Separate video calls with T02 and T04. T04 agreed with the financial account but asked again that the write-up make clear this is leaving the district, not teaching. T02 objected to “arithmetic”: the decision was not the pros and cons list but not being able to imagine the job at thirty-five. The claim was widened to include the future participants cannot picture and no longer speaks of arithmetic. T10 replied by email that the claim fitted the leaving but not the return, which was “the same spreadsheet with a new row”; noted in the counter-evidence.",
    },
]

FINDINGS = [
    {
        "key": "finding-presence", "theme": "presence", "createdAt": "2026-03-17 10:00",
        "titleOverride": "", "claimOverride": "",
        "writerNote": "Lead with the T03 and T01 contrast, then the focus-group mentors. Keep the neighbour teacher vague at T01's request. Close on T08 so the finding does not overpromise.",
        "includeExemplarQuotes": True, "includeSupportingQuotes": True, "includeCounterExamples": True,
    },
    {
        "key": "finding-calculation", "theme": "calculation", "createdAt": "2026-03-17 11:30",
        "titleOverride": "Leaving the district is not leaving teaching",
        "claimOverride": "",
        "writerNote": "Open with T04's request about how this is written up. Put T05's refusal to do the math beside T04's napkin, not after it. Mention the missing exit interviews as something the district can change. Use T10 to show the calculation running both ways, not as a happy ending.",
        "includeExemplarQuotes": True, "includeSupportingQuotes": True, "includeCounterExamples": True,
    },
]

STUDY_FRAME = {
    "researchQuestion": "How do early-career secondary teachers in Pellbrook Unified School District account for their decisions to stay in, move from, or leave teaching, and what do they describe as holding them or pushing them out?",
    "purpose": "To understand retention from the standpoint of teachers in their first four years, in a district where early-career turnover has risen, and to give the district's teacher advisory group findings grounded in teachers' own accounts rather than in exit statistics.",
    "methodology": "Reflexive thematic analysis, mainly inductive with a light frame from the retention literature, of six semi-structured interviews (45–70 minutes) and one focus group with four teachers. Purposive sampling for variety of subject, school, years of experience and stated intention; the sixth interview, with a teacher who left and came back, was sought after first coding showed no account from anyone who had actually left. Codes are kept in a codebook with inclusion and exclusion rules, then grouped into categories and themes; negative cases are sought deliberately and draft themes are taken back to participants.",
    "researcherStance": "Former secondary science teacher (five years), now in graduate study: an insider to the work and an outsider to this district. I treat participants' accounts as interpretations to understand rather than reports to verify, and I keep my own history of leaving teaching in view rather than trying to bracket it away.",
    "firstReadMemo": "First read across the first six transcripts: time and money are everywhere, but they are rarely the whole story. The sharpest contrasts are about who is present — T03's mentor across the hall against T01's mentor in another building — and about whether participants can picture a future here. “The kids” appears in every transcript as a reason to stay and I must not treat it as self-evident. T04's insistence on leaving the district, not teaching, should shape how leaving is coded. Watch my own sympathy for leaving accounts. (26 February, after transcribing T10: the returner reads the calculation from the far side. Everyone compares teaching with other work, but only T10 has tried it, and T10 talks about it in terms of purpose, not pay.)",
}

CONTEXT_LENS = {
    "setting": "Pellbrook Unified School District, a mid-sized district with three high schools and two middle schools, in a town where housing costs have risen since a regional distribution centre opened. The district, schools and neighbouring towns are pseudonyms.",
    "population": "Secondary teachers in their first to fourth year: six interviewees (mathematics, English, chemistry, social studies, special education, English language development) and four focus-group participants (PE and health, Spanish, biology, music). Roughly 23 to 35 years old; one career changer and one teacher who left for two years and returned were interviewed, and one focus-group member is considering a move into lab work.",
    "culturalContext": "Teaching is locally seen as a stable, respectable job, and several participants grew up in the area. A strong “you do it for the kids” discourse runs through the talk, which participants both draw on and push against.",
    "institutionalContext": "Mentors are assigned for two years, matched by availability and without release time. A scripted literacy curriculum was adopted last year. A substitute shortage means frequent, mostly unpaid coverage. The neighbouring Tallis County district pays more at equivalent steps. There are no exit interviews and no teacher-leader roles between classroom teacher and assistant principal. Teachers who return after time away are not assigned mentors.",
    "positionality": "I am a former teacher who left the classroom, and participants knew this; some may have told me more about leaving because of it. I hold no role in the district and cannot affect anyone's employment, which I said at the start of each interview.",
    "consequences": "Findings go to the district's teacher advisory group. In a small district careless reporting could identify participants, especially at Dunmarrow, where two of them work, and the one returner is distinctive enough to need extra care. Findings framed only around pay could invite a narrow response; framed only around support, they could let the district step around pay.",
}

TRUSTWORTHINESS = {
    "reflexivityNotes": "I left secondary teaching after five years, partly for reasons participants describe here (workload, and a principal I did not trust). After T02 I noticed I was warming to leaving accounts and probing them harder than staying accounts. I wrote a memo on it and from then on asked every participant what keeps them, not only what pushes them; the Staying anchors code exists partly because of that correction. I know two senior teachers in the district socially. Neither is a participant, and I have not discussed the study with them. T10 is the participant whose history is nearest mine and then departs from it: they came back and I did not. I noticed myself hearing the return as a retreat and wrote a memo on it the evening of the interview.",
    "limitationsNotes": "A small, self-selected sample from one district: teachers with strong views either way were probably likelier to volunteer. Two interviewees work at Dunmarrow and two at Esker Hill, so their accounts of leadership are not independent. Only one participant (T10) has actually left, and T10 came back; no one who left for good was interviewed, so the other leaving accounts are anticipatory or freshly decided. The focus group produced more complaint than the interviews, which may reflect group dynamics. Administrators' views are absent by design. Transcripts are lightly cleaned, and overlapping talk in the focus group was simplified.",
    "negativeCaseNotes": "T05 refuses the financial calculation and is staying despite high exhaustion — the clearest negative case for the calculation theme. T08 had the best-matched mentoring in the sample and is still interviewing for a lab job, which qualifies the support theme. T04's close department eased leaving rather than preventing it. T09 put pay second to workload. T10 acted on the calculation and returned, finding the sum had left out the work itself. Each is recorded as a counter-example quote or in a theme's counter-evidence, and I have tried to keep them in the body of the findings rather than in a closing caveat.",
    "auditTrailNotes": "Interviews 20 January to 6 February, focus group 12 February, and a sixth interview (T10, who had left and returned) on 24 February, each transcribed by me within two days. Codebook drafted 16 February from first-read memos; Staying anchors added 23 February while coding T05, with earlier transcripts recoded for it on 26 February. Comparison with other work added 26 February after transcribing T10; T10 coded and the earlier transcripts recoded for it on 27 February. Categories 27 February; themes 3–4 March. Contextual lens reviews 9–10 March. Member checks 14 and 16 March; the calculation theme was revised after the second. Decisions are logged in the audit trail and in code and theme memos.",
}

REPORT_MEMO = "Working structure for the report to the teacher advisory group: two findings for now, led by the support finding because it is the one the district can act on soonest. Pay is real, but participants asked not to be reduced to it, so the calculation finding carries T05's refusal and T02's “wasn't the list” alongside T04's numbers. T10's return goes in the calculation finding as the case that tested the other side of the gap, not as a happy ending. The students theme is not staged yet; its claim still reads as a truism and needs another pass against the focus group. Schools will be referred to by letter, since two participants share one."

MANIFEST = {
    "title": "Teacher Retention",
    "summary": "Reflexive thematic analysis of interviews and a focus group with early-career secondary teachers on why they stay in, move from, or leave teaching.",
    "createdAt": "2026-01-12 15:00",
    "updatedAt": "2026-03-17 12:00",
}
WORKSPACE_UPDATED = "2026-03-17 12:00"


# ---------------------------------------------------------------------------
# Assembly
# ---------------------------------------------------------------------------

def find_segment(source, phrase, what):
    hits = [seg for seg in source["segments"] if phrase in seg["text"]]
    if len(hits) != 1:
        raise SampleError(
            "%s: phrase %r matches %d segments of %s (need exactly one)"
            % (what, phrase, len(hits), source["key"]))
    return hits[0]


def lookup(table, key, what):
    if key not in table:
        raise SampleError("%s refers to unknown key %r" % (what, key))
    return table[key]


def build():
    sources = []
    by_key = {}
    for raw in SOURCES:
        key = raw["key"]
        source_id = uid("source", key)
        segments = []
        for index, (speaker, text) in enumerate(raw["turns"], start=1):
            segments.append({
                "id": uid("segment", "%s/%02d" % (key, index)),
                "text": "%s: %s" % (speaker, text),
            })
        record = {
            "id": source_id,
            "label": raw["label"],
            "date": iso(at(raw["date"])),
            "tags": list(raw["tags"]),
            "mediaMemo": dict(raw["mediaMemo"]),
            "mediaNotes": [],
            "createdAt": iso(at(raw["createdAt"])),
        }
        entry = {"key": key, "record": record, "segments": segments}
        sources.append(entry)
        by_key[key] = entry

    events = []  # (datetime, event, detail); sorted and numbered at the end

    codes, code_by_key = [], {}
    for c in CODES:
        created = at(c["createdAt"])
        code = {
            "id": uid("code", c["key"]),
            "name": c["name"],
            "definition": c["definition"],
            "fullDescription": c["fullDescription"],
            "includeWhen": c["includeWhen"],
            "excludeWhen": c["excludeWhen"],
            "borderlineCases": c["borderlineCases"],
            "exampleQuote": c["exampleQuote"],
            "contextNotes": c["contextNotes"],
            "status": c["status"],
            "includeInContextualLens": c["includeInContextualLens"],
            "createdAt": iso(created),
        }
        codes.append(code)
        code_by_key[c["key"]] = code
        events.append((created, "code_created", c["name"]))

    categories, category_by_key = [], {}
    for c in CATEGORIES:
        created = at(c["createdAt"])
        category = {
            "id": uid("category", c["key"]),
            "name": c["name"],
            "memo": c["memo"],
            "codeIDs": [lookup(code_by_key, k, "category " + c["key"])["id"] for k in c["codes"]],
            "createdAt": iso(created),
        }
        categories.append(category)
        category_by_key[c["key"]] = category
        events.append((created, "category_created", c["name"]))

    themes, theme_by_key = [], {}
    for t in THEMES:
        created = at(t["createdAt"])
        theme = {
            "id": uid("theme", t["key"]),
            "name": t["name"],
            "memo": t["memo"],
            "interpretiveClaim": t["interpretiveClaim"],
            "codeIDs": [lookup(code_by_key, k, "theme " + t["key"])["id"] for k in t["codes"]],
            "categoryIDs": [lookup(category_by_key, k, "theme " + t["key"])["id"] for k in t["categories"]],
            "contextLens": t["contextLens"],
            "counterEvidence": t["counterEvidence"],
            "createdAt": iso(created),
        }
        themes.append(theme)
        theme_by_key[t["key"]] = theme
        events.append((created, "theme_created", t["name"]))

    applications = []
    for start, rows in SESSIONS:
        moment = at(start)
        for step, (source_key, code_key, phrase, with_excerpt, memo) in enumerate(rows):
            if step:
                moment += timedelta(minutes=APPLICATION_STEPS[step % len(APPLICATION_STEPS)])
            source = lookup(by_key, source_key, "application")
            code = lookup(code_by_key, code_key, "application")
            segment = find_segment(source, phrase, "application of " + code_key)
            application = {
                "id": uid("application", "%s/%s/%s" % (source_key, segment["id"], code_key)),
                "response": {"sourceID": source["record"]["id"], "segmentID": segment["id"]},
                "codeID": code["id"],
                "memo": memo,
                "createdAt": iso(moment),
            }
            if with_excerpt:
                application["excerpt"] = phrase
            applications.append(application)
            # The log keeps a sample of coding, not every click: the first
            # application of each sitting and every third one after it.
            if step % 3 == 0:
                events.append((moment, "application_added", code["name"]))

    quotes = []
    for q in QUOTES:
        created = at(q["createdAt"])
        source = lookup(by_key, q["source"], "quote " + q["key"])
        segment = find_segment(source, q["text"], "quote " + q["key"])
        quotes.append({
            "id": uid("quote", q["key"]),
            "response": {"sourceID": source["record"]["id"], "segmentID": segment["id"]},
            "text": q["text"],
            "codeIDs": [lookup(code_by_key, k, "quote " + q["key"])["id"] for k in q["codes"]],
            "themeIDs": [lookup(theme_by_key, k, "quote " + q["key"])["id"] for k in q["themes"]],
            "memo": q["memo"],
            "rationale": q["rationale"],
            "role": q["role"],
            "isExemplar": q["role"] == "exemplar",
            "createdAt": iso(created),
        })
        events.append((created, "quote_added", q["text"][:60]))

    reviews = []
    for r in LENS_REVIEWS:
        review = {"id": uid("lens-review", r["key"])}
        if "code" in r:
            target = lookup(code_by_key, r["code"], "review " + r["key"])
            review["codeID"] = target["id"]
        else:
            target = lookup(theme_by_key, r["theme"], "review " + r["key"])
            review["themeID"] = target["id"]
        for field in ("context", "voice", "powerPosition", "representation",
                      "counterPatterns", "consequences", "analyticAction"):
            review[field] = r[field]
        review["createdAt"] = iso(at(r["createdAt"]))
        review["updatedAt"] = iso(at(r["updatedAt"]))
        reviews.append(review)
        events.append((at(r["createdAt"]), "contextual_lens_review_added", target["name"]))

    member_checks = []
    for m in MEMBER_CHECKS:
        member_checks.append({
            "id": uid("member-check", m["key"]),
            "date": m["date"],
            "finding": m["finding"],
            "outcome": m["outcome"],
            "feedback": m["feedback"],
        })
        events.append((at(m["when"]), "member_check_saved", m["finding"]))

    findings = []
    for f in FINDINGS:
        created = at(f["createdAt"])
        theme = lookup(theme_by_key, f["theme"], "finding " + f["key"])
        findings.append({
            "id": uid("finding", f["key"]),
            "themeID": theme["id"],
            "titleOverride": f["titleOverride"],
            "claimOverride": f["claimOverride"],
            "writerNote": f["writerNote"],
            "includeExemplarQuotes": f["includeExemplarQuotes"],
            "includeSupportingQuotes": f["includeSupportingQuotes"],
            "includeCounterExamples": f["includeCounterExamples"],
            "createdAt": iso(created),
        })
        events.append((created, "finding_staged", theme["name"]))

    workspace = {
        "formatVersion": 1,
        "studyFrame": dict(STUDY_FRAME),
        "contextLens": dict(CONTEXT_LENS),
        "contextualLensReviews": reviews,
        "codes": codes,
        "categories": categories,
        "themes": themes,
        "applications": applications,
        "quotes": quotes,
        "reportFindings": findings,
        "reportSections": [],
        "trustworthiness": dict(TRUSTWORTHINESS, memberChecks=member_checks),
        "reportMemo": REPORT_MEMO,
        "updatedAt": iso(at(WORKSPACE_UPDATED)),
    }

    # Stable sort: events logged at the same instant keep their build order.
    events.sort(key=lambda e: e[0])
    audit = [
        {"id": uid("audit", "%03d" % n), "when": iso(when), "event": event, "detail": detail}
        for n, (when, event, detail) in enumerate(events, start=1)
    ]

    manifest = {
        "formatVersion": 1,
        "app": "Merivante Mibrel",
        "appVersion": "1.0.0",
        "title": MANIFEST["title"],
        "summary": MANIFEST["summary"],
        "createdAt": iso(at(MANIFEST["createdAt"])),
        "updatedAt": iso(at(MANIFEST["updatedAt"])),
    }

    return {
        "manifest": manifest,
        "sources": [(s["record"], {"segments": s["segments"]}) for s in sources],
        "workspace": workspace,
        "audit": audit,
    }


# ---------------------------------------------------------------------------
# Validation
# ---------------------------------------------------------------------------

ID_RE = re.compile(r"^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}$")
DATE_RE = re.compile(r"^\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}Z$")
STATUSES = {"draft", "review", "accepted"}
ROLES = {"exemplar", "supporting", "counterExample"}
EVENTS = {
    "code_created", "category_created", "theme_created", "application_added",
    "quote_added", "contextual_lens_review_added", "member_check_saved",
    "finding_staged",
}
TYPED_ONLY_ABSENT = ("mediaFilename", "mediaKind", "transcriptionMediaFilename", "transcriptionStatus")
# The sample has to show real work in every part of the workbench: transcripts
# long enough to code, a codebook whose entries carry their rules, and each
# kind of quote.
SEGMENTS_PER_SOURCE = (10, 30)
MIN_INTERVIEWS = 6
MIN_CODES = 12
CODEBOOK_TEXT = ("definition", "includeWhen", "excludeWhen")

SHAPES = {
    # record kind: (required keys, optional keys)
    "manifest": ({"formatVersion", "app", "appVersion", "title", "createdAt", "updatedAt"}, {"summary"}),
    "source": ({"id", "label", "date", "tags", "mediaMemo", "mediaNotes", "createdAt"}, set()),
    "mediaMemo": ({"tone", "pausesAndEmphasis", "setting", "gestureAndMovement", "interaction",
                   "nonverbalContext", "analyticNotes"}, set()),
    "segment": ({"id", "text"}, set()),
    "workspace": ({"formatVersion", "studyFrame", "contextLens", "contextualLensReviews", "codes",
                   "categories", "themes", "applications", "quotes", "reportFindings",
                   "reportSections", "trustworthiness", "reportMemo", "updatedAt"}, set()),
    "studyFrame": ({"researchQuestion", "purpose", "methodology", "researcherStance", "firstReadMemo"}, set()),
    "contextLens": ({"setting", "population", "culturalContext", "institutionalContext",
                     "positionality", "consequences"}, set()),
    "review": ({"id", "context", "voice", "powerPosition", "representation", "counterPatterns",
                "consequences", "analyticAction", "createdAt", "updatedAt"}, {"codeID", "themeID"}),
    "code": ({"id", "name", "definition", "fullDescription", "includeWhen", "excludeWhen",
              "borderlineCases", "exampleQuote", "contextNotes", "status",
              "includeInContextualLens", "createdAt"}, set()),
    "category": ({"id", "name", "memo", "codeIDs", "createdAt"}, set()),
    "theme": ({"id", "name", "memo", "interpretiveClaim", "codeIDs", "categoryIDs", "contextLens",
               "counterEvidence", "createdAt"}, set()),
    "application": ({"id", "response", "codeID", "memo", "createdAt"}, {"excerpt"}),
    "response": ({"sourceID", "segmentID"}, set()),
    "quote": ({"id", "response", "text", "codeIDs", "themeIDs", "memo", "rationale", "role",
               "isExemplar", "createdAt"}, set()),
    "finding": ({"id", "themeID", "titleOverride", "claimOverride", "writerNote",
                 "includeExemplarQuotes", "includeSupportingQuotes", "includeCounterExamples",
                 "createdAt"}, set()),
    "trustworthiness": ({"reflexivityNotes", "limitationsNotes", "negativeCaseNotes",
                         "auditTrailNotes", "memberChecks"}, set()),
    "memberCheck": ({"id", "date", "finding", "outcome", "feedback"}, set()),
    "event": ({"id", "when", "event", "detail"}, set()),
}

BOOL_FIELDS = {"includeInContextualLens", "isExemplar", "includeExemplarQuotes",
               "includeSupportingQuotes", "includeCounterExamples"}
INT_FIELDS = {"formatVersion"}
LIST_FIELDS = {"tags", "mediaNotes", "codeIDs", "categoryIDs", "themeIDs", "segments",
               "contextualLensReviews", "codes", "categories", "themes", "applications",
               "quotes", "reportFindings", "reportSections", "memberChecks"}
DICT_FIELDS = {"mediaMemo", "response", "studyFrame", "contextLens", "trustworthiness"}
# A theme's contextLens is its own note, not the workspace-wide lens object.
TEXT_OVERRIDES = {("theme", "contextLens")}


class Checker:
    def __init__(self):
        self.problems = []
        self.seen_ids = {}

    def fail(self, where, message):
        self.problems.append("%s: %s" % (where, message))

    def shape(self, kind, record, where):
        if not isinstance(record, dict):
            self.fail(where, "expected an object")
            return False
        required, optional = SHAPES[kind]
        missing = required - record.keys()
        extra = record.keys() - required - optional
        if missing:
            self.fail(where, "missing keys " + ", ".join(sorted(missing)))
        if extra:
            self.fail(where, "unexpected keys " + ", ".join(sorted(extra)))
        for key, value in record.items():
            if (kind, key) in TEXT_OVERRIDES:
                ok = isinstance(value, str)
            elif key in BOOL_FIELDS:
                ok = isinstance(value, bool)
            elif key in INT_FIELDS:
                ok = isinstance(value, int) and not isinstance(value, bool)
            elif key in LIST_FIELDS:
                ok = isinstance(value, list)
            elif key in DICT_FIELDS:
                ok = isinstance(value, dict)
            else:
                ok = isinstance(value, str)
            if not ok:
                self.fail(where, "%s has the wrong type (%s)" % (key, type(value).__name__))
        return not missing

    def identifier(self, value, where):
        if not isinstance(value, str) or not ID_RE.match(value):
            self.fail(where, "id %r is not an upper-case UUID" % (value,))
            return
        if value in self.seen_ids:
            self.fail(where, "id %s already used by %s" % (value, self.seen_ids[value]))
        else:
            self.seen_ids[value] = where

    def date(self, value, where):
        if not isinstance(value, str) or not DATE_RE.match(value):
            self.fail(where, "date %r is not YYYY-MM-DDTHH:MM:SSZ" % (value,))
            return None
        try:
            return datetime.strptime(value, "%Y-%m-%dT%H:%M:%SZ")
        except ValueError:
            self.fail(where, "date %r does not exist" % value)
            return None

    def refs(self, values, known, what, where):
        for value in values:
            if value not in known:
                self.fail(where, "%s %s does not exist" % (what, value))
        if len(set(values)) != len(values):
            self.fail(where, "%s list repeats an id" % what)


def no_nulls(value, path, checker):
    if value is None:
        checker.fail(path, "null value; absent optional fields must be left out")
    elif isinstance(value, dict):
        for k, v in value.items():
            no_nulls(v, path + "." + k, checker)
    elif isinstance(value, list):
        for i, v in enumerate(value):
            no_nulls(v, "%s[%d]" % (path, i), checker)


def validate(package):
    ck = Checker()
    no_nulls(package, "package", ck)

    manifest = package["manifest"]
    if ck.shape("manifest", manifest, "manifest"):
        ck.date(manifest["createdAt"], "manifest.createdAt")
        ck.date(manifest["updatedAt"], "manifest.updatedAt")
        if manifest["formatVersion"] != 1:
            ck.fail("manifest", "formatVersion must be 1")

    segments_of = {}
    for record, transcript in package["sources"]:
        where = "source %s" % record.get("label")
        if not ck.shape("source", record, where):
            continue
        ck.identifier(record["id"], where)
        ck.date(record["date"], where + ".date")
        ck.date(record["createdAt"], where + ".createdAt")
        ck.shape("mediaMemo", record["mediaMemo"], where + ".mediaMemo")
        for key in TYPED_ONLY_ABSENT:
            if key in record:
                ck.fail(where, "typed transcript must not carry " + key)
        if not all(isinstance(t, str) for t in record["tags"]):
            ck.fail(where, "tags must be strings")
        segs = transcript.get("segments") if isinstance(transcript, dict) else None
        if not isinstance(segs, list) or not segs or set(transcript) != {"segments"}:
            ck.fail(where, "transcript must be {\"segments\": [...]} with at least one segment")
            continue
        low, high = SEGMENTS_PER_SOURCE
        if not low <= len(segs) <= high:
            ck.fail(where, "has %d segments; a sample transcript needs %d to %d" % (len(segs), low, high))
        texts = {}
        for i, seg in enumerate(segs):
            swhere = "%s segment %d" % (where, i + 1)
            if ck.shape("segment", seg, swhere):
                ck.identifier(seg["id"], swhere)
                if not seg["text"].strip():
                    ck.fail(swhere, "empty text")
                texts[seg["id"]] = seg["text"]
        segments_of[record["id"]] = texts
    interviews = sum(1 for record, _ in package["sources"]
                     if isinstance(record, dict) and "interview" in record.get("tags", []))
    if interviews < MIN_INTERVIEWS:
        ck.fail("sources", "%d interviews; the sample needs at least %d" % (interviews, MIN_INTERVIEWS))

    ws = package["workspace"]
    if not ck.shape("workspace", ws, "workspace"):
        return ck.problems
    ck.shape("studyFrame", ws["studyFrame"], "studyFrame")
    ck.shape("contextLens", ws["contextLens"], "contextLens")
    workspace_updated = ck.date(ws["updatedAt"], "workspace.updatedAt")
    if ws["reportSections"] != []:
        ck.fail("workspace", "reportSections should be empty")

    def response(resp, where):
        if not ck.shape("response", resp, where + ".response"):
            return None
        texts = segments_of.get(resp["sourceID"])
        if texts is None:
            ck.fail(where, "source %s does not exist" % resp["sourceID"])
            return None
        if resp["segmentID"] not in texts:
            ck.fail(where, "segment %s is not in source %s" % (resp["segmentID"], resp["sourceID"]))
            return None
        return texts[resp["segmentID"]]

    all_text = [t for texts in segments_of.values() for t in texts.values()]
    codes, created = {}, {}
    for c in ws["codes"]:
        where = "code %s" % c.get("name")
        if not ck.shape("code", c, where):
            continue
        ck.identifier(c["id"], where)
        codes[c["id"]] = c
        created[c["id"]] = ck.date(c["createdAt"], where)
        if c["status"] not in STATUSES:
            ck.fail(where, "status %r is not draft, review or accepted" % (c["status"],))
        if c["exampleQuote"] and not any(c["exampleQuote"] in t for t in all_text):
            ck.fail(where, "exampleQuote is not verbatim from any transcript")
        for field in CODEBOOK_TEXT:
            if not c[field].strip():
                ck.fail(where, field + " is empty")
    if len(codes) < MIN_CODES:
        ck.fail("codebook", "%d codes; the sample needs at least %d" % (len(codes), MIN_CODES))

    categories = {}
    for c in ws["categories"]:
        where = "category %s" % c.get("name")
        if not ck.shape("category", c, where):
            continue
        ck.identifier(c["id"], where)
        categories[c["id"]] = c
        created[c["id"]] = ck.date(c["createdAt"], where)
        ck.refs(c["codeIDs"], codes, "code", where)

    themes = {}
    for t in ws["themes"]:
        where = "theme %s" % t.get("name")
        if not ck.shape("theme", t, where):
            continue
        ck.identifier(t["id"], where)
        themes[t["id"]] = t
        created[t["id"]] = ck.date(t["createdAt"], where)
        ck.refs(t["codeIDs"], codes, "code", where)
        ck.refs(t["categoryIDs"], categories, "category", where)

    def not_before(moment, ids, where):
        for i in ids:
            if moment and created.get(i) and moment < created[i]:
                ck.fail(where, "created before the record it refers to (%s)" % i)

    coded_pairs = set()
    for a in ws["applications"]:
        where = "application %s" % a.get("id")
        if not ck.shape("application", a, where):
            continue
        ck.identifier(a["id"], where)
        moment = ck.date(a["createdAt"], where)
        text = response(a["response"], where)
        ck.refs([a["codeID"]], codes, "code", where)
        not_before(moment, [a["codeID"]], where)
        if text is not None and "excerpt" in a and a["excerpt"] not in text:
            ck.fail(where, "excerpt is not a substring of its segment")
        pair = (a["response"].get("segmentID"), a["codeID"])
        if pair in coded_pairs:
            ck.fail(where, "same code applied twice to one segment")
        coded_pairs.add(pair)

    roles = set()
    for q in ws["quotes"]:
        where = "quote %s" % q.get("id")
        if not ck.shape("quote", q, where):
            continue
        ck.identifier(q["id"], where)
        moment = ck.date(q["createdAt"], where)
        text = response(q["response"], where)
        ck.refs(q["codeIDs"], codes, "code", where)
        ck.refs(q["themeIDs"], themes, "theme", where)
        not_before(moment, q["codeIDs"] + q["themeIDs"], where)
        if text is not None and q["text"] not in text:
            ck.fail(where, "text is not a substring of its segment")
        if q["role"] not in ROLES:
            ck.fail(where, "role %r is not exemplar, supporting or counterExample" % (q["role"],))
        if q["isExemplar"] != (q["role"] == "exemplar"):
            ck.fail(where, "isExemplar disagrees with role")
        roles.add(q["role"])
    for role in sorted(ROLES - roles):
        ck.fail("quotes", "no %s quote" % role)

    previous = None
    for r in ws["contextualLensReviews"]:
        where = "lens review %s" % r.get("id")
        if not ck.shape("review", r, where):
            continue
        ck.identifier(r["id"], where)
        made = ck.date(r["createdAt"], where)
        updated = ck.date(r["updatedAt"], where)
        if made and updated and updated < made:
            ck.fail(where, "updatedAt precedes createdAt")
        if ("codeID" in r) == ("themeID" in r):
            ck.fail(where, "needs exactly one of codeID or themeID")
        if "codeID" in r:
            ck.refs([r["codeID"]], codes, "code", where)
        if "themeID" in r:
            ck.refs([r["themeID"]], themes, "theme", where)
        if previous and made and made > previous:
            ck.fail(where, "reviews must be listed newest first")
        previous = made or previous

    finding_themes = set()
    for f in ws["reportFindings"]:
        where = "finding %s" % f.get("id")
        if not ck.shape("finding", f, where):
            continue
        ck.identifier(f["id"], where)
        moment = ck.date(f["createdAt"], where)
        ck.refs([f["themeID"]], themes, "theme", where)
        not_before(moment, [f["themeID"]], where)
        if f["themeID"] in finding_themes:
            ck.fail(where, "second finding for the same theme")
        finding_themes.add(f["themeID"])
    if not finding_themes:
        ck.fail("report", "no staged finding")

    trust = ws["trustworthiness"]
    if ck.shape("trustworthiness", trust, "trustworthiness"):
        for m in trust["memberChecks"]:
            where = "member check %s" % m.get("id") if isinstance(m, dict) else "member check"
            if ck.shape("memberCheck", m, where):
                ck.identifier(m["id"], where)

    names = {
        "code_created": {c["name"] for c in codes.values()},
        "category_created": {c["name"] for c in categories.values()},
        "theme_created": {t["name"] for t in themes.values()},
        "application_added": {c["name"] for c in codes.values()},
        "quote_added": {q["text"][:60] for q in ws["quotes"]},
        "contextual_lens_review_added": {c["name"] for c in codes.values()} | {t["name"] for t in themes.values()},
        "member_check_saved": {m["finding"] for m in trust.get("memberChecks", [])},
        "finding_staged": {t["name"] for t in themes.values()},
    }
    last = None
    for e in package["audit"]:
        where = "audit event %s" % e.get("id")
        if not ck.shape("event", e, where):
            continue
        ck.identifier(e["id"], where)
        when = ck.date(e["when"], where)
        if e["event"] not in EVENTS:
            ck.fail(where, "unknown event %r" % e["event"])
        elif e["detail"] not in names[e["event"]]:
            ck.fail(where, "detail %r names nothing in the workspace" % e["detail"])
        if last and when and when < last:
            ck.fail(where, "audit trail is not in time order")
        last = when or last
    if last and workspace_updated and workspace_updated < last:
        ck.fail("workspace", "updatedAt precedes the last audit event")

    return ck.problems


# ---------------------------------------------------------------------------
# Writing
# ---------------------------------------------------------------------------

def encode(value):
    return json.dumps(value, indent=2, sort_keys=True, ensure_ascii=False).encode("utf-8")


def package_files(package):
    files = [("manifest.json", package["manifest"]),
             ("qual/workspace.json", package["workspace"]),
             ("sources/index.json", [record for record, _ in package["sources"]])]
    for record, transcript in package["sources"]:
        files.append(("sources/%s/meta.json" % record["id"], record))
        files.append(("sources/%s/transcript.json" % record["id"], transcript))
    files.append(("trustworthiness/audit.json", package["audit"]))
    return files


def write_package(files):
    target = os.path.join(HERE, PACKAGE_NAME)
    staging = tempfile.mkdtemp(prefix=".TeacherRetention-", suffix=".tmp", dir=HERE)
    retired = None
    try:
        # mkdtemp makes a private folder; give the package ordinary permissions.
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(staging, 0o777 & ~mask)
        for relative, value in files:
            path = os.path.join(staging, *relative.split("/"))
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as handle:
                handle.write(encode(value))
        if os.path.lexists(target):
            retired = staging + ".old"
            os.rename(target, retired)
        os.rename(staging, target)
    except BaseException:
        shutil.rmtree(staging, ignore_errors=True)
        if retired and not os.path.lexists(target):
            os.rename(retired, target)
        raise
    if retired:
        shutil.rmtree(retired)
    return target


def main():
    try:
        package = build()
        problems = validate(package)
        if problems:
            raise SampleError("the sample is inconsistent:\n  " + "\n  ".join(problems))
        target = write_package(package_files(package))
    except SampleError as error:
        print("make_sample: " + str(error), file=sys.stderr)
        return 1
    except OSError as error:
        print("make_sample: could not write the sample package: %s" % error, file=sys.stderr)
        return 1

    ws = package["workspace"]
    segments = sum(len(t["segments"]) for _, t in package["sources"])
    print("wrote %s" % os.path.relpath(target))
    print("  %d sources, %d segments, %d codes, %d categories, %d themes,"
          % (len(package["sources"]), segments, len(ws["codes"]), len(ws["categories"]), len(ws["themes"])))
    print("  %d applications, %d quotes, %d audit events"
          % (len(ws["applications"]), len(ws["quotes"]), len(package["audit"])))
    return 0


if __name__ == "__main__":
    sys.exit(main())
